// The mutex: a critical section until a condition is tied to it, then a kernel mutex.
#include <windows.h>

#include <cinttypes>
#include <cstdlib>

#include <new>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/sync/internal.h"

using namespace ov;

static_assert(sizeof(ov_critical_section) == sizeof(CRITICAL_SECTION));
static_assert(alignof(ov_critical_section) == alignof(CRITICAL_SECTION));
static_assert(OV_EABANDONED == WAIT_ABANDONED && OV_EWAITTIMEOUT == WAIT_TIMEOUT);

std::atomic<void (*)()> ov::reacquire_hook{nullptr};

namespace {

CRITICAL_SECTION* section(ov_mutex* m) {
  return reinterpret_cast<CRITICAL_SECTION*>(&m->critical_section);
}

// A holder waits for itself: nothing that follows could be right.
[[noreturn]] void abort_reacquire() {
  ov_err("ov_mutex_acquire: attempt to reacquire non-recursive mutex.  Aborting.");
  ov_log_btrace();
  DebugBreak();
  abort();
}

// Takes the kernel mutex; `name` is the function that log lines name.
ov_rc acquire_kernel_mutex(ov_mutex* m, DWORD milliseconds, const char* name) {
  const DWORD result = WaitForSingleObject(m->mutex, milliseconds);
  if (result == WAIT_FAILED) {
    const ov_rc error = last_code();
    ov_log("%s failed, err=%d", name, error);
    return error;
  }
  if (result == WAIT_ABANDONED) {
    ov_log("%s: wait abandoned", name);
    return OV_EABANDONED;
  }
  if (result != WAIT_OBJECT_0) {
    ov_log("%s: unknown err=%d:", name, static_cast<int>(result));
    return static_cast<ov_rc>(result);
  }
  const uint32_t owner = owner_of(m).load();
  if (m->recursive == 0 && owner != 0 && owner != ov_thread_self()) {
    ov_log("%s failed.  Mutex is still owned by thread %lu", name,
           static_cast<unsigned long>(owner));
    return 0;
  }
  note_acquired(m);
  return 0;
}

}  // namespace

ov_rc ov_mutex_init(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  *m = {};
  InitializeCriticalSection(section(m));
  m->mutex = kClosedHandle;
  return 0;
}

ov_rc ov_mutex_init_recursive(ov_mutex* m) {
  const ov_rc error = ov_mutex_init(m);
  if (error == 0) m->recursive = 1;
  return error;
}

ov_rc ov_mutex_destroy(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  DeleteCriticalSection(section(m));
  if (m->mutex == kClosedHandle) return 0;
  const ov_rc error = code_of(CloseHandle(m->mutex));
  if (error != 0) ov_log("ov_mutex_destroy, CloseHandle failed, err=%d", error);
  return error;
}

ov_rc ov_mutex_create(ov_mutex** out) {
  if (out == nullptr) return OV_EINVAL;
  *out = new (std::nothrow) ov_mutex;
  return *out == nullptr ? OV_ENOMEM : ov_mutex_init(*out);
}

void ov_mutex_dispose(ov_mutex** m) {
  if (m == nullptr || *m == nullptr) return;
  ov_mutex_destroy(*m);
  delete *m;
  *m = nullptr;
}

ov_rc ov::switch_to_mutex(ov_mutex* m) {
  if (switched_of(m).load() != 0) return 0;
  const bool owner = is_held_by_self(m);
  if (!owner) {
    EnterCriticalSection(section(m));
    if (switched_of(m).load() != 0) {
      LeaveCriticalSection(section(m));
      return 0;
    }
  }
  const HANDLE mutex = CreateMutexW(nullptr, owner ? TRUE : FALSE, nullptr);
  ov_rc error = 0;
  if (mutex == nullptr) {
    error = last_code();
    ov_log("ov_mutex_switch_to_mutex failed, err=%d", error);
  } else {
    // A recursive holder takes the kernel mutex as often as it had entered the critical section.
    if (owner) {
      for (int32_t i = 1; i < m->depth; ++i) WaitForSingleObject(mutex, INFINITE);
    }
    m->mutex = mutex;
    switched_of(m).store(1);
  }
  if (!owner) LeaveCriticalSection(section(m));
  return error;
}

ov_rc ov_mutex_acquire(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (m->recursive == 0 && owner_of(m).load() == ov_thread_self()) {
    void (*const hook)() = reacquire_hook.load();
    if (hook == nullptr) abort_reacquire();
    hook();
    return OV_EEXIST;
  }
  if (switched_of(m).load() == 0) {
    EnterCriticalSection(section(m));
    if (switched_of(m).load() == 0) {
      note_acquired(m);
      return 0;
    }
    LeaveCriticalSection(section(m));
  }
  return acquire_kernel_mutex(m, INFINITE, "ov_mutex_acquire");
}

ov_rc ov_mutex_acquire_nb(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (m->recursive == 0 && owner_of(m).load() == ov_thread_self()) return OV_EEXIST;
  if (switched_of(m).load() == 0) {
    if (!TryEnterCriticalSection(section(m))) return OV_EWOULDBLOCK;
    if (switched_of(m).load() == 0) {
      note_acquired(m);
      return 0;
    }
    LeaveCriticalSection(section(m));
  }
  return acquire_kernel_mutex(m, 0, "ov_mutex_acquire_nb");
}

ov_rc ov_mutex_release(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (!is_held_by_self(m)) {
    ov_log("Attempt to release mutex by non-owner thread");
    return OV_ENOTOWNER;
  }
  note_released(m);
  if (switched_of(m).load() == 0) {
    LeaveCriticalSection(section(m));
    return 0;
  }
  if (ReleaseMutex(m->mutex)) return 0;
  const ov_rc error = last_code();
  note_acquired(m);
  ov_log("ov_mutex_release failed. err=%d &m->mutex=0x%p, m->mutex=0x%" PRIx64, error,
         static_cast<void*>(&m->mutex), reinterpret_cast<uint64_t>(m->mutex));
  return error;
}
