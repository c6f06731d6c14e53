// The condition, built from a semaphore, an event and the kernel's atomic signal-and-wait.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/sync/internal.h"

using namespace ov;

namespace {

constexpr LONG kMostWaiters = 0x7FFFFFFF;

CRITICAL_SECTION* section(ov_cond* c) {
  return reinterpret_cast<CRITICAL_SECTION*>(&c->waiters_lock);
}

// Holds `waiters_lock`, which guards `waiters` and `broadcast`; never held over a kernel wait.
class WaitersLock {
 public:
  explicit WaitersLock(ov_cond* c) : section_(section(c)) { EnterCriticalSection(section_); }
  ~WaitersLock() { LeaveCriticalSection(section_); }
  WaitersLock(const WaitersLock&) = delete;
  WaitersLock& operator=(const WaitersLock&) = delete;

  // Lets go of the lock until no broadcast is under way: a thread that came to wait in the middle
  // of one would take the wake-up of a thread it is meant for, and the broadcaster would never
  // return.
  void awaitNoBroadcast(const ov_cond* c) {
    while (c->broadcast != 0) {
      LeaveCriticalSection(section_);
      Sleep(1);
      EnterCriticalSection(section_);
    }
  }

 private:
  CRITICAL_SECTION* section_;
};

// Sleeps until a signal; the result is that of the kernel's wait. The mutex is held at both ends.
DWORD wait_for_signal(ov_cond* c, DWORD milliseconds) {
  {
    WaitersLock lock(c);
    lock.awaitNoBroadcast(c);
    ++c->waiters;
  }
  ov_mutex* const m = c->mutex;
  owner_of(m).store(0);
  if (m->recursive != 0) --depth_of(m);
  const DWORD result = SignalObjectAndWait(m->mutex, c->semaphore, milliseconds, FALSE);
  bool last = false;
  {
    const WaitersLock lock(c);
    --c->waiters;
    last = c->broadcast != 0 && c->waiters == 0;
  }
  if (!last) {
    ov_mutex_acquire(m);
  } else if (SignalObjectAndWait(c->last_waiter_done, m->mutex, INFINITE, FALSE) == WAIT_OBJECT_0) {
    note_acquired(m);
  }
  return result;
}

// A length of time for the kernel; what it could not hold becomes its longest.
DWORD kernel_time(const int32_t sec_usec[2]) {
  const int64_t milliseconds = int64_t{sec_usec[0]} * 1000 + sec_usec[1] / 1000;
  if (milliseconds <= 0) return 0;
  return milliseconds >= INFINITE ? INFINITE - 1 : static_cast<DWORD>(milliseconds);
}

}  // namespace

ov_rc ov_cond_init(ov_cond* c, ov_mutex* m) {
  if (c == nullptr || m == nullptr) return OV_EINVAL;
  *c = {};
  ov_rc error = switch_to_mutex(m);
  if (error != 0) return error;
  c->mutex = m;
  c->semaphore = CreateSemaphoreW(nullptr, 0, kMostWaiters, nullptr);
  if (c->semaphore == nullptr) {
    error = last_code();
    ov_log("ov_cond_init, CreateSemaphore failed, err=%d", error);
    return error;
  }
  InitializeCriticalSection(section(c));
  c->last_waiter_done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  if (c->last_waiter_done != nullptr) return 0;
  error = last_code();
  ov_log("ov_cond_init, CreateEvent failed, err=%d", error);
  DeleteCriticalSection(section(c));
  CloseHandle(c->semaphore);
  c->semaphore = nullptr;
  return error;
}

ov_rc ov_cond_destroy(ov_cond* c) {
  if (c == nullptr) return OV_EINVAL;
  DeleteCriticalSection(section(c));
  CloseHandle(c->semaphore);
  CloseHandle(c->last_waiter_done);
  return 0;
}

ov_rc ov_cond_wait(ov_cond* c) {
  if (c == nullptr) return OV_EINVAL;
  wait_for_signal(c, INFINITE);
  return 0;
}

ov_rc ov_cond_timedwait(ov_cond* c, const int32_t sec_usec[2]) {
  if (c == nullptr) return OV_EINVAL;
  const DWORD result = wait_for_signal(c, sec_usec == nullptr ? INFINITE : kernel_time(sec_usec));
  if (result == WAIT_TIMEOUT) return OV_ETIMEDOUT;
  return result == WAIT_OBJECT_0 ? 0 : OV_EINVAL;
}

ov_rc ov_cond_timedwait_ms(ov_cond* c, int32_t milliseconds) {
  if (milliseconds < 0) return ov_cond_timedwait(c, nullptr);
  const int32_t split[2] = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return ov_cond_timedwait(c, split);
}

ov_rc ov_cond_signal(ov_cond* c) {
  if (c == nullptr) return OV_EINVAL;
  bool waiting = false;
  {
    const WaitersLock lock(c);
    waiting = c->waiters > 0;
  }
  if (!waiting || ReleaseSemaphore(c->semaphore, 1, nullptr) != FALSE) return 0;
  const ov_rc error = last_code();
  ov_log("ov_cond_signal, ReleaseSemaphore failed, err=%d", error);
  return error;
}

ov_rc ov_cond_signal_all(ov_cond* c) {
  if (c == nullptr) return OV_EINVAL;
  {
    WaitersLock lock(c);
    lock.awaitNoBroadcast(c);
    if (c->waiters == 0) return 0;
    c->broadcast = 1;
    if (ReleaseSemaphore(c->semaphore, c->waiters, nullptr) == FALSE) {
      // Nobody was woken who could tell that he was the last.
      const ov_rc error = last_code();
      c->broadcast = 0;
      ov_log("ov_cond_signal_all, ReleaseSemaphore failed, err=%d", error);
      return error;
    }
  }
  WaitForSingleObject(c->last_waiter_done, INFINITE);
  const WaitersLock lock(c);
  c->broadcast = 0;
  // A waiter that the wait above did not wait for must not wake the next broadcast.
  ResetEvent(c->last_waiter_done);
  return 0;
}
