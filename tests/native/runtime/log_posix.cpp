#include "runtime/log/platform.h"

#include <unistd.h>

#include <mutex>

#include "runtime/ov_files.h"

namespace ov {
namespace {
std::mutex log_lock;
}  // namespace

uint32_t process_id() {
  return static_cast<uint32_t>(getpid());
}

void write_standard_error(std::string_view text) {
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) return;
}

ov_rc open_file_size(void* file, uint64_t* size) {
  ov_stat record;
  const ov_rc error = ov_file_fstat(&file, &record);
  if (error == 0) *size = record.size;
  return error;
}

void acquire_log_lock() {
  log_lock.lock();
}

bool try_acquire_log_lock() {
  return log_lock.try_lock();
}

void release_log_lock() {
  log_lock.unlock();
}

}  // namespace ov
