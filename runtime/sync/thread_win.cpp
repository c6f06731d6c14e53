// Threads, and the clock of their bounded waits.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/errors/asserts.h"
#include "runtime/sync/coarse_clock.h"
#include "runtime/sync/internal.h"

using namespace ov;

namespace {

bool is_open(const ov_thread* thread) {
  return thread != nullptr && thread->handle != kClosedHandle && thread->handle != nullptr;
}

constexpr DWORD kResumeFailed = ~DWORD{0};

ov_rc spawn_failed(ov_rc error) {
  ov_log("ov_thread_spawn failed, err=%d", error);
  return error;
}

ov_rc join_failed(ov_rc error) {
  ov_log("ov_thread_join failed, err=%d", error);
  return error;
}

}  // namespace

ov_rc ov_thread_spawn(ov_thread* thread, ov_thread_fn function, void* argument) {
  if (function == nullptr) {
    count_failed_assert();
    return OV_EINVAL;
  }
  DWORD id = 0;
  // A thread that has a record is let go when that is filled, for it may read it at once.
  const DWORD flags = thread == nullptr ? 0 : CREATE_SUSPENDED;
  const HANDLE handle = CreateThread(nullptr, 0, function, argument, flags, &id);
  if (handle == nullptr) return spawn_failed(last_code());
  if (thread == nullptr) {
    CloseHandle(handle);
    return 0;
  }
  thread->handle = handle;
  thread->id = static_cast<uint32_t>(id);
  if (ResumeThread(handle) != kResumeFailed) return 0;
  const ov_rc error = spawn_failed(last_code());
  TerminateThread(handle, 0);  // it has not run, and so holds nothing
  CloseHandle(handle);
  thread->handle = kClosedHandle;
  return error;
}

ov_rc ov_thread_join(ov_thread* thread) {
  if (thread == nullptr) {
    count_failed_assert();
    return OV_EINVAL;
  }
  // All ones stands for the process itself in the kernel's eyes; to wait for it would never end.
  if (!is_open(thread)) return join_failed(OV_EBADF);
  const DWORD result = WaitForSingleObject(thread->handle, INFINITE);
  if (result != WAIT_OBJECT_0) {
    return join_failed(result == WAIT_FAILED ? last_code() : static_cast<ov_rc>(result));
  }
  CloseHandle(thread->handle);
  thread->handle = kClosedHandle;
  return 0;
}

uint64_t ov::coarse_milliseconds() {
  return GetTickCount64();
}

ov_rc ov_thread_sleep(uint32_t milliseconds) {
  Sleep(milliseconds);
  return 0;
}

uint32_t ov_thread_self(void) {
  return static_cast<uint32_t>(GetCurrentThreadId());
}

uint32_t ov_thread_getid(const ov_thread* thread) {
  return thread == nullptr ? 0 : thread->id;
}

int32_t ov_thread_alive(const ov_thread* thread) {
  if (!is_open(thread)) return 1;
  return WaitForSingleObject(thread->handle, 0) == WAIT_OBJECT_0 ? 1 : 0;
}

void ov_thread_exit(void) {
  ExitThread(0);
}
