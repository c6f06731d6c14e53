// Semaphores, and the locks that processes share: each a semaphore of count 1 with a name.
#include <windows.h>

#include <cinttypes>
#include <cstring>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/sync/internal.h"

using namespace ov;

namespace {

constexpr LONG kHighestCount = 32767;

ov_rc wait_for(ov_sem* s, DWORD milliseconds) {
  if (s == nullptr) return OV_EINVAL;
  // All ones stands for the process itself in the kernel's eyes; to wait for it would never end.
  const bool open = *s != nullptr && *s != kClosedHandle;
  const DWORD result = open ? WaitForSingleObject(*s, milliseconds) : WAIT_FAILED;
  if (result == WAIT_OBJECT_0) return 0;
  if (result == WAIT_TIMEOUT) return OV_EWOULDBLOCK;
  auto error = static_cast<ov_rc>(result);
  if (result == WAIT_FAILED) error = open ? last_code() : OV_EBADF;
  ov_log("ov_sem_wait, not signalled, err=%d", error);
  return error;
}

ov_rc init_failed(ov_rc error) {
  ov_log("ov_named_mutex_init failed, err=%d", error);
  return error;
}

// `space` is the namespace of the name: of the machine or of the session.
ov_rc init(ov_named_mutex* m, const char* space, const char* name) {
  if (m == nullptr || name == nullptr) return OV_EINVAL;
  *m = nullptr;
  char text[OV_PATH_SIZE];
  const ov_rc error = ov_str_printf_to(text, sizeof text, nullptr, "%s\\ov_mutex_%s", space, name);
  if (error != 0) return init_failed(error);
  // A path used as a name must not look like further namespaces.
  ov_path_convert_path_to_forward_slashes(text, sizeof text);
  text[strlen(space)] = '\\';
  wchar_t wide[OV_PATH_SIZE];
  size_t bytes = sizeof wide;
  if (const ov_rc unread = ov_utf8_to_wchar(text, wide, &bytes)) return init_failed(unread);
  *m = CreateSemaphoreW(nullptr, 1, 1, wide);
  return *m != nullptr ? 0 : init_failed(last_code());
}

ov_rc acquire(ov_named_mutex* m, DWORD milliseconds, const char* name) {
  if (m == nullptr) return OV_EINVAL;
  // All ones stands for the process itself in the kernel's eyes; to wait for it would never end.
  const bool open = *m != nullptr && *m != kClosedHandle;
  const DWORD result = open ? WaitForSingleObject(*m, milliseconds) : WAIT_FAILED;
  if (result == WAIT_OBJECT_0) return 0;
  if (result == WAIT_FAILED) {
    const ov_rc error = open ? last_code() : OV_EBADF;
    ov_log("%s failed, err=%d", name, error);
    return error;
  }
  if (result == WAIT_ABANDONED) {
    ov_log("%s: wait abandoned", name);
    return OV_EABANDONED;
  }
  ov_log("%s: unknown err=%d:", name, static_cast<int>(result));
  return static_cast<ov_rc>(result);
}

ov_rc destroy(ov_named_mutex* m, const char* name) {
  if (m == nullptr) return OV_EINVAL;
  const ov_rc error = code_of(CloseHandle(*m));
  *m = kClosedHandle;
  if (error != 0) ov_log("%s, CloseHandle failed, err=%d", name, error);
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
  *s = kClosedHandle;
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

ov_rc ov_named_mutex_init(ov_named_mutex* m, const char* name) {
  return init(m, "Global", name);
}

ov_rc ov_named_local_mutex_init(ov_named_mutex* m, const char* name) {
  return init(m, "Local", name);
}

ov_rc ov_named_mutex_destroy(ov_named_mutex* m) {
  return destroy(m, "ov_named_mutex_destroy");
}

ov_rc ov_named_mutex_force_destroy(ov_named_mutex* m) {
  return destroy(m, "ov_named_mutex_force_destroy");
}

ov_rc ov_named_mutex_acquire(ov_named_mutex* m) {
  return acquire(m, INFINITE, "ov_named_mutex_acquire");
}

ov_rc ov_named_mutex_acquire_nb(ov_named_mutex* m) {
  return acquire(m, 0, "ov_named_mutex_acquire_nb");
}

ov_rc ov_named_mutex_release(ov_named_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (ReleaseSemaphore(*m, 1, nullptr)) return 0;
  const ov_rc error = last_code();
  ov_log("ov_named_mutex_release failed. err=%d &m->sem=0x%p, m->sem=0x%" PRIx64, error,
         static_cast<void*>(m), reinterpret_cast<uint64_t>(*m));
  return error;
}
