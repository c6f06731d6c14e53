#include "runtime/log_platform.h"

#include <windows.h>

namespace ov {
namespace {
SRWLOCK log_lock = SRWLOCK_INIT;
}  // namespace

uint32_t process_id() {
  return GetCurrentProcessId();
}

uint32_t thread_id() {
  return GetCurrentThreadId();
}

void acquire_log_lock() {
  AcquireSRWLockExclusive(&log_lock);
}

void release_log_lock() {
  ReleaseSRWLockExclusive(&log_lock);
}

}  // namespace ov
