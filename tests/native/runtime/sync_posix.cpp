// The mutexes and conditions of the base runtime on POSIX threads, for sanitizer builds. The mutex
// lives in the record, the condition on the heap behind the handle of the semaphore.
#include <cerrno>
#include <pthread.h>
#include <cstdlib>
#include <ctime>

#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/sync/internal.h"

using namespace ov;

std::atomic<void (*)()> ov::reacquire_hook{nullptr};

static_assert(sizeof(pthread_mutex_t) <= sizeof(ov_critical_section));
static_assert(alignof(pthread_mutex_t) <= alignof(ov_critical_section));

namespace {

pthread_mutex_t* native(ov_mutex* m) {
  return reinterpret_cast<pthread_mutex_t*>(&m->critical_section);
}

pthread_cond_t* native(ov_cond* c) {
  return static_cast<pthread_cond_t*>(c->semaphore);
}

ov_rc init(ov_mutex* m, bool recursive) {
  if (m == nullptr) return OV_EINVAL;
  *m = {};
  m->recursive = recursive ? 1 : 0;
  m->mutex = kClosedHandle;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes,
                            recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
  const int error = pthread_mutex_init(native(m), &attributes);
  pthread_mutexattr_destroy(&attributes);
  return error;
}

// The holder lets go for the length of a wait; `wait` gives an errno.
template <typename Wait>
int wait_released(ov_cond* c, Wait wait) {
  ov_mutex* const m = c->mutex;
  owner_of(m).store(0);
  if (m->recursive != 0) --depth_of(m);
  const int error = wait();
  note_acquired(m);
  return error;
}

}  // namespace

ov_rc ov_mutex_init(ov_mutex* m) {
  return init(m, false);
}

ov_rc ov_mutex_init_recursive(ov_mutex* m) {
  return init(m, true);
}

ov_rc ov_mutex_destroy(ov_mutex* m) {
  return m == nullptr ? OV_EINVAL : pthread_mutex_destroy(native(m));
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

ov_rc ov_mutex_acquire(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (m->recursive == 0 && owner_of(m).load() == ov_thread_self()) {
    if (void (*const hook)() = reacquire_hook.load()) {
      hook();
      return OV_EEXIST;
    }
    ov_err("ov_mutex_acquire: attempt to reacquire non-recursive mutex.  Aborting.");
    ov_log_btrace();
    abort();
  }
  const int error = pthread_mutex_lock(native(m));
  if (error == 0) note_acquired(m);
  return error;
}

ov_rc ov_mutex_acquire_nb(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (m->recursive == 0 && owner_of(m).load() == ov_thread_self()) return OV_EEXIST;
  if (pthread_mutex_trylock(native(m)) == 0) {
    note_acquired(m);
    return 0;
  }
  if (switched_of(m).load() == 0) return OV_EWOULDBLOCK;
  ov_log("ov_mutex_acquire_nb: unknown err=%d:", OV_EWAITTIMEOUT);
  return OV_EWAITTIMEOUT;
}

ov_rc ov_mutex_release(ov_mutex* m) {
  if (m == nullptr) return OV_EINVAL;
  if (!is_held_by_self(m)) {
    ov_log("Attempt to release mutex by non-owner thread");
    return OV_ENOTOWNER;
  }
  note_released(m);
  return pthread_mutex_unlock(native(m));
}

ov_rc ov::switch_to_mutex(ov_mutex* m) {
  switched_of(m).store(1);
  return 0;
}

ov_rc ov_cond_init(ov_cond* c, ov_mutex* m) {
  if (c == nullptr || m == nullptr) return OV_EINVAL;
  *c = {};
  switch_to_mutex(m);
  c->mutex = m;
  auto* const condition = new (std::nothrow) pthread_cond_t;
  if (condition == nullptr) return OV_ENOMEM;
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(condition, &attributes);
  pthread_condattr_destroy(&attributes);
  c->semaphore = condition;
  return 0;
}

ov_rc ov_cond_destroy(ov_cond* c) {
  if (c == nullptr) return OV_EINVAL;
  pthread_cond_destroy(native(c));
  delete native(c);
  c->semaphore = nullptr;
  return 0;
}

ov_rc ov_cond_wait(ov_cond* c) {
  return ov_cond_timedwait(c, nullptr);
}

ov_rc ov_cond_timedwait(ov_cond* c, const int32_t sec_usec[2]) {
  if (c == nullptr) return OV_EINVAL;
  if (sec_usec == nullptr) {
    return wait_released(c, [c] { return pthread_cond_wait(native(c), native(c->mutex)); });
  }
  timespec end;
  clock_gettime(CLOCK_MONOTONIC, &end);
  end.tv_sec += sec_usec[0];
  end.tv_nsec += int64_t{sec_usec[1]} * 1000;
  end.tv_sec += end.tv_nsec / 1000000000;
  end.tv_nsec %= 1000000000;
  const int error = wait_released(
      c, [c, &end] { return pthread_cond_timedwait(native(c), native(c->mutex), &end); });
  if (error == ETIMEDOUT) return OV_ETIMEDOUT;
  return error == 0 ? 0 : OV_EINVAL;
}

ov_rc ov_cond_timedwait_ms(ov_cond* c, int32_t milliseconds) {
  if (milliseconds < 0) return ov_cond_timedwait(c, nullptr);
  const int32_t split[2] = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return ov_cond_timedwait(c, split);
}

ov_rc ov_cond_signal(ov_cond* c) {
  return c == nullptr ? OV_EINVAL : pthread_cond_signal(native(c));
}

ov_rc ov_cond_signal_all(ov_cond* c) {
  return c == nullptr ? OV_EINVAL : pthread_cond_broadcast(native(c));
}
