#include "runtime/log/file.h"

#include <cstdio>
#include <cstring>

#include "runtime/log/platform.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_threads.h"
#include "runtime/strings/decimal.h"

namespace ov {

constinit LogFile log_file;

namespace {

constexpr int32_t kLogDirectoryMode = 0777;
// From here a number of MiB does not count as a limit.
constexpr uint64_t kSizeSuffixEnd = 0x20000000;

// Directory of a log that was given a bare name: "var/log" below the installation, or if there is
// none the program's own directory.
ov_rc default_directory(char (&out)[kLogPathRoom]) {
  char program[kLogPathRoom];
  char root[kLogPathRoom];
  if (ov_path_executable_path(program, sizeof program) < 0) return OV_ERANGE;
  if (ov_path_root_dir(program, root, sizeof root) < 0) return OV_ERANGE;
  if (ov_snprintf(out, sizeof out, "%s/var/log", root) < 0) return OV_ERANGE;
  if (ov_path_exists(out)) return 0;
  return ov_path_executable_dir(out, sizeof out) < 0 ? OV_ERANGE : 0;
}

}  // namespace

ov_rc LogFile::open(const char* path, bool* complete) {
  if (path == nullptr) return OV_EINVAL;
  if (std::strlen(path) > kLogPathRoom) return OV_EPATHMAX;
  if (const ov_rc error = ov_mutex_init(&rotation_)) return error;
  rotationMade_ = true;
  ov_rc result = 0;
  if (std::strcmp(path, "-") == 0) {
    toStderr_ = true;
  } else {
    if (const ov_rc error = setPath(path)) return error;
    result = checkRotation();
  }
  process_ = process_id();
  *complete = true;
  return result;
}

ov_rc LogFile::setPath(const char* path) {
  size_t length = 0;
  if (ov_str_to(path_, path, sizeof path_, &length) != 0) return OV_EPATHMAX;
  takeSizeSuffix(path);
  ov_file_tounixpath(path_);
  return std::strchr(path_, '/') != nullptr ? 0 : moveToDefaultDirectory(path);
}

void LogFile::takeSizeSuffix(const char* path) {
  const char* const colon = std::strrchr(path, ':');
  if (colon == nullptr || colon == path) return;
  if (colon == path + 1 && ov_path_has_windows_drive_letter(path)) return;
  const Decimal megabytes = read_decimal(colon + 1);
  if (megabytes.digits == 0) return;
  char* const cut = path_ + (colon - path);
  const char* const rest = colon + 1 + megabytes.digits;
  std::memmove(cut, rest, std::strlen(rest) + 1);
  if (megabytes.value > 0 && megabytes.value < kSizeSuffixEnd) {
    maxSize_.store(megabytes.value << 20);
  }
}

// `name` is the caller's, so a size suffix stays in the name of the file.
ov_rc LogFile::moveToDefaultDirectory(const char* name) {
  char directory[kLogPathRoom];
  if (const ov_rc error = default_directory(directory)) return error;
  if (ov_path_append(directory, name, path_, sizeof path_) < 0) return OV_ERANGE;
  return ov_dir_create(directory, kLogDirectoryMode, 1);
}

ov_rc LogFile::write(LogLine& line, int32_t level, bool nested) {
  if (!open_ && !toStderr_) return OV_EINVAL;
  if (!nested && fold_.repeats(line.text())) return 0;
  if (toStderr_ || echoLevel_.load() >= level) write_standard_error(line.textAndEnd());
  if (toStderr_) return 0;
  const std::string_view time = clock_.now();
  if (time.empty()) return OV_ELOG;
  line.stamp(nested ? 0 : fold_.count(), time, process_, ov_thread_self());
  const ov_rc result = writeAll(line.whole());
  if (nested) return result;
  fold_.clearCount();
  if (bytesSinceCheck_ >= kLogCheckInterval) {
    bytesSinceCheck_ = 0;
    checkRotation();
  }
  return result;
}

ov_rc LogFile::writeAll(std::string_view bytes) {
  while (!bytes.empty()) {
    uint32_t written = 0;
    const ov_rc error =
        ov_file_write(&file_, bytes.data(), static_cast<uint32_t>(bytes.size()), &written);
    if (error != 0) return error;
    if (written == 0) return OV_ELOG;
    bytesSinceCheck_ += written;
    bytes.remove_prefix(written);
  }
  return 0;
}

void LogFile::flush() {
  if (open_) ov_file_flush(&file_);
}

void LogFile::close() {
  if (open_) {
    flush();
    ov_file_close(&file_);
    open_ = false;
  }
  if (rotationMade_) ov_mutex_destroy(&rotation_);
  rotationMade_ = false;
  toStderr_ = false;
  echoLevel_.store(-1);
}

}  // namespace ov
