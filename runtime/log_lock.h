// Holds the log's lock for a scope. A log call that the log's own work makes, on the thread that
// holds the lock, does not wait for itself: it finds nested() and must leave the fold and the
// rotation alone.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/log_platform.h"

namespace ov {

class LogLock {
 public:
  LogLock() : nested_(holder.load(std::memory_order_relaxed) == thread_id()) {
    if (nested_) return;
    acquire_log_lock();
    holder.store(thread_id(), std::memory_order_relaxed);
  }
  ~LogLock() {
    if (nested_) return;
    holder.store(0, std::memory_order_relaxed);
    release_log_lock();
  }
  LogLock(const LogLock&) = delete;
  LogLock& operator=(const LogLock&) = delete;

  bool nested() const { return nested_; }

 private:
  // Thread id of the holder, 0 for none. A thread can find its own id here only if it wrote it.
  static inline std::atomic<uint32_t> holder = 0;
  const bool nested_;
};

}  // namespace ov
