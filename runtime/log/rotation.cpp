// Choosing, opening and changing the generation that the log writes to.
#include <cstdio>

#include "runtime/files/dir_reader.h"
#include "runtime/log/file.h"
#include "runtime/log/platform.h"
#include "runtime/ov_errors.h"

namespace ov {
namespace {

constexpr int32_t kLogFileMode = 0660;

// Tells a failure of the log itself on standard error; the lines end as those of the log do.
OV_PRINTF(1, 2)
void report(const char* format, ...) {
  char text[kLogPathRoom + 64];
  va_list arguments;
  va_start(arguments, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it does not see the start above
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (length > 0 && static_cast<size_t>(length) < sizeof text) {
    write_standard_error({text, static_cast<size_t>(length)});
  }
}

// The generations that there are.
ov_rc find_generations(const LogGenerations& generations, LogGenerationSet* found) {
  char directory[kLogPathRoom];
  generations.directory(directory);
  DirReader dir;
  if (const ov_rc error = dir.open(directory)) {
    report("Error opening log directory %s\r\n", directory);
    return error;
  }
  ov_dirent entry;
  while (dir.next(&entry) == 0) {
    const int digit = generations.digitOf(entry.name);
    if (digit >= 0) found->set(static_cast<size_t>(digit));
  }
  return 0;
}

}  // namespace

ov_rc LogFile::checkRotation() {
  if (const ov_rc error = ov_mutex_acquire(&rotation_)) return error;
  const ov_rc result = open_ ? rotateIfFull() : openGeneration();
  ov_mutex_release(&rotation_);
  return result;
}

ov_rc LogFile::rotateIfFull() {
  uint64_t size = 0;
  if (const ov_rc error = open_file_size(file_, &size)) return error;
  if (size < maxSize_.load()) return 0;
  ov_file_close(&file_);
  open_ = false;
  return openGeneration();
}

ov_rc LogFile::openGeneration() {
  const LogGenerations generations(path_);
  LogGenerationSet existing;
  if (const ov_rc error = find_generations(generations, &existing)) return error;
  const int last = choose_log_generation(existing);
  bool renew_link = last < 0;
  int digit = last < 0 ? 0 : last;
  if (const ov_rc error = openDigit(generations, digit)) return error;
  // With a limit that no file stays below, the last one tried is as good as any.
  for (int advance = 0; advance < kLogAdvanceLimit && isFull(); ++advance) {
    ov_file_close(&file_);
    open_ = false;
    digit = next_log_generation(digit);
    renew_link = true;
    // The gap in the ring moves on in front of the new generation.
    char gap[kLogGenerationPathRoom];
    generations.pathOf(next_log_generation(digit), gap);
    ov_file_delete(gap);
    if (const ov_rc error = openDigit(generations, digit)) return error;
  }
  if (renew_link) {
    ov_file_delete(path_);
    ov_file_hardlink(generationPath_, path_);
  }
  return 0;
}

ov_rc LogFile::openDigit(const LogGenerations& generations, int digit) {
  generations.pathOf(digit, generationPath_);
  ov_file_init(&file_);
  if (ov_file_openappend(generationPath_, &file_, kLogFileMode) != 0) {
    report("Cannot open log file: %s\r\n", generationPath_);
    return OV_EINVAL;
  }
  open_ = true;
  return 0;
}

bool LogFile::isFull() {
  ov_stat record;
  return ov_file_fstat(&file_, &record) != 0 || record.size >= maxSize_.load();
}

}  // namespace ov
