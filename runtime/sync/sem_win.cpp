// Semaphores.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/sync/internal.h"

using namespace ov;

namespace {

constexpr LONG kHighestCount = 32767;

ov_rc wait_for(ov_sem* s, DWORD milliseconds) {
  if (s == nullptr) return OV_EINVAL;
  // All ones stands for the process itself in the kernel's eyes; to wait for it would never end.
  const bool open = *s != nullptr && *s != kClosedObject;
  const DWORD result = open ? WaitForSingleObject(*s, milliseconds) : WAIT_FAILED;
  if (result == WAIT_OBJECT_0) return 0;
  if (result == WAIT_TIMEOUT) return kWouldBlock;
  auto error = static_cast<ov_rc>(result);
  if (result == WAIT_FAILED) error = open ? last_code() : OV_EBADF;
  ov_log("ov_sem_wait, not signalled, err=%d", error);
  return error;
}

}  // namespace

ov_rc ov_sem_init(ov_sem* s, int32_t initial) {
  if (s == nullptr) return OV_EINVAL;
  *s = CreateSemaphoreW(nullptr, initial, kHighestCount, nullptr);
  if (*s != nullptr) return 0;
  const ov_rc error = last_code();
  ov_log("ov_sem_init failed, err=%d", error);
  return error;
}

ov_rc ov_sem_destroy(ov_sem* s) {
  if (s == nullptr) return OV_EINVAL;
  const ov_rc error = code_of(CloseHandle(*s));
  *s = kClosedObject;
  if (error != 0) ov_log("ov_sem_destroy, CloseHandle failed, err=%d", error);
  return error;
}

ov_rc ov_sem_post(ov_sem* s) {
  if (s == nullptr) return OV_EINVAL;
  const ov_rc error = code_of(ReleaseSemaphore(*s, 1, nullptr));
  if (error != 0) ov_log("ov_sem_post, ReleaseSemaphore failed, err=%d", error);
  return error;
}

ov_rc ov_sem_wait(ov_sem* s) {
  return wait_for(s, INFINITE);
}

ov_rc ov_sem_trywait(ov_sem* s, int32_t milliseconds) {
  return wait_for(s, static_cast<DWORD>(milliseconds));
}
