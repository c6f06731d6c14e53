#include "runtime/log_platform.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>

namespace ov {
namespace {
std::mutex log_lock;
}  // namespace

uint32_t process_id() {
  return static_cast<uint32_t>(getpid());
}

uint32_t thread_id() {
  return static_cast<uint32_t>(syscall(SYS_gettid));
}

void acquire_log_lock() {
  log_lock.lock();
}

void release_log_lock() {
  log_lock.unlock();
}

}  // namespace ov
