#include "runtime/log/file.h"

#include <cstdio>
#include <cstring>

#include "runtime/log/platform.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_threads.h"

namespace ov {

constinit LogFile log_file;

namespace {

constexpr int32_t log_directory_mode = 0777;
// From here a number of MiB does not count as a limit.
constexpr uint64_t size_suffix_end = 0x20000000;

// Directory of a log that was given a bare name: "var/log" below the installation, or if there is
// none the program's own directory.
ov_rc default_directory(char (&out)[log_path_room]) {
  char program[log_path_room];
  char root[log_path_room];
  if (ov_path_executable_path(program, sizeof program) < 0) return OV_ERANGE;
  if (ov_path_root_dir(program, root, sizeof root) < 0) return OV_ERANGE;
  if (ov_snprintf(out, sizeof out, "%s/var/log", root) < 0) return OV_ERANGE;
  if (ov_path_exists(out)) return 0;
  return ov_path_executable_dir(out, sizeof out) < 0 ? OV_ERANGE : 0;
}

}  // namespace

ov_rc LogFile::open(const char* path, bool* complete) {
  if (!path) return OV_EINVAL;
  if (std::strlen(path) > log_path_room) return OV_EPATHMAX;
  if (const ov_rc error = ov_mutex_init(&rotation_)) return error;
  rotation_made_ = true;
  ov_rc result = 0;
  if (std::strcmp(path, "-") == 0) {
    to_stderr_ = true;
  } else {
    if (const ov_rc error = set_path(path)) return error;
    result = check_rotation();
  }
  process_ = process_id();
  *complete = true;
  return result;
}

ov_rc LogFile::set_path(const char* path) {
  size_t length = 0;
  if (ov_str_to(path_, path, sizeof path_, &length) != 0) return OV_EPATHMAX;
  take_size_suffix(path);
  ov_file_tounixpath(path_);
  return std::strchr(path_, '/') ? 0 : move_to_default_directory(path);
}

void LogFile::take_size_suffix(const char* path) {
  const char* const colon = std::strrchr(path, ':');
  if (!colon || colon == path) return;
  if (colon == path + 1 && ov_path_has_windows_drive_letter(path)) return;
  const size_t digits = std::strspn(colon + 1, "0123456789");
  if (digits == 0) return;
  char* const cut = path_ + (colon - path);
  const char* const rest = colon + 1 + digits;
  std::memmove(cut, rest, std::strlen(rest) + 1);
  uint64_t megabytes = 0;
  for (size_t i = 1; i <= digits && megabytes < size_suffix_end; ++i) {
    megabytes = megabytes * 10 + static_cast<uint64_t>(colon[i] - '0');
  }
  if (megabytes > 0 && megabytes < size_suffix_end) max_size_.store(megabytes << 20);
}

// `name` is the caller's, so a size suffix stays in the name of the file.
ov_rc LogFile::move_to_default_directory(const char* name) {
  char directory[log_path_room];
  if (const ov_rc error = default_directory(directory)) return error;
  if (ov_path_append(directory, name, path_, sizeof path_) < 0) return OV_ERANGE;
  return ov_dir_create(directory, log_directory_mode, 1);
}

ov_rc LogFile::write(LogLine& line, int32_t level, bool nested) {
  if (!open_ && !to_stderr_) return OV_EINVAL;
  if (!nested && fold_.repeats(line.text())) return 0;
  if (to_stderr_ || echo_level_.load() >= level) write_standard_error(line.text_and_end());
  if (to_stderr_) return 0;
  const std::string_view time = clock_.now();
  if (time.empty()) return OV_ELOG;
  line.stamp(nested ? 0 : fold_.count(), time, process_, ov_thread_self());
  const ov_rc result = write_all(line.whole());
  if (nested) return result;
  fold_.clear_count();
  if (bytes_since_check_ >= log_check_interval) {
    bytes_since_check_ = 0;
    check_rotation();
  }
  return result;
}

ov_rc LogFile::write_all(std::string_view bytes) {
  while (!bytes.empty()) {
    uint32_t written = 0;
    const ov_rc error =
        ov_file_write(&file_, bytes.data(), static_cast<uint32_t>(bytes.size()), &written);
    if (error != 0) return error;
    if (written == 0) return OV_ELOG;
    bytes_since_check_ += written;
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
  if (rotation_made_) ov_mutex_destroy(&rotation_);
  rotation_made_ = false;
  to_stderr_ = false;
  echo_level_.store(-1);
}

}  // namespace ov
