// Owners of the base runtime's mutex and of a condition tied to it, usable with std::lock_guard and
// std::unique_lock. Any thread may lock, wait and signal; the owner of the object destroys it when
// nobody uses it any more. Not recursive.
#pragma once

#include "runtime/ov_threads.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

class Mutex {
 public:
  Mutex() {
    if (const ov_rc code = ov_mutex_init(&mutex_)) {
      throw SystemException(describeSystemError("Failed to create mutex: ", code));
    }
  }
  ~Mutex() { ov_mutex_destroy(&mutex_); }
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() { ov_mutex_acquire(&mutex_); }
  void unlock() { ov_mutex_release(&mutex_); }

 private:
  friend class Condition;
  ov_mutex mutex_;
};

class Condition {
 public:
  // Tied to `mutex` for life, which must not be in use yet.
  explicit Condition(Mutex& mutex) {
    if (const ov_rc code = ov_cond_init(&condition_, &mutex.mutex_)) {
      throw SystemException(describeSystemError("Failed to create condition: ", code));
    }
  }
  ~Condition() { ov_cond_destroy(&condition_); }
  Condition(const Condition&) = delete;
  Condition& operator=(const Condition&) = delete;

  // The caller holds the mutex, before and after. May return without a signal.
  void wait() { ov_cond_wait(&condition_); }
  void signal() { ov_cond_signal(&condition_); }

 private:
  ov_cond condition_;
};

}  // namespace Vantrel::Web
