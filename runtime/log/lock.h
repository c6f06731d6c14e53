// Holds the log's lock for a scope. A log call that the log's own work makes, on the thread that
// holds the lock, does not wait for itself: it finds nested() and must leave the fold and the
// rotation alone. So must the report of a fault, which waits for a bounded time only: the holder
// may be a thread that the fault keeps from going on.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "runtime/faults/fault_report.h"
#include "runtime/log/platform.h"
#include "runtime/ov_threads.h"
#include "runtime/sync/bounded_lock.h"

namespace ov {

class LogLock {
 public:
  LogLock() : state_(acquire()) {
    if (owns()) holder_.store(ov_thread_self(), std::memory_order_relaxed);
  }
  ~LogLock() {
    if (!owns()) return;
    holder_.store(0, std::memory_order_relaxed);
    release_log_lock();
  }
  LogLock(const LogLock&) = delete;
  LogLock& operator=(const LogLock&) = delete;

  // False when a report has waited in vain: the log is another thread's.
  explicit operator bool() const { return state_ != State::kRefused; }
  bool nested() const { return state_ != State::kOuter; }

 private:
  // `inner`: the calling thread holds it already, further out. `report`: held by a fault's report.
  enum class State : uint8_t { kOuter, kInner, kReport, kRefused };

  // Milliseconds that the lines of a report wait together.
  static constexpr uint32_t kReportPatience = 1000;

  static State acquire() {
    if (holder_.load(std::memory_order_relaxed) == ov_thread_self()) return State::kInner;
    if (FaultReport::Slot* const report = FaultReport::ofThisThread()) return acquireFor(*report);
    acquire_log_lock();
    return State::kOuter;
  }

  static State acquireFor(FaultReport::Slot& report) {
    BoundedWait wait(kReportPatience - std::min(report.waited, kReportPatience));
    bool acquired = try_acquire_log_lock();
    while (!acquired && wait.goOn()) acquired = try_acquire_log_lock();
    report.waited += static_cast<uint32_t>(std::min<uint64_t>(wait.waited(), kReportPatience));
    return acquired ? State::kReport : State::kRefused;
  }

  bool owns() const { return state_ == State::kOuter || state_ == State::kReport; }

  // Thread id of the holder, 0 for none. A thread can find its own id here only if it wrote it.
  static inline std::atomic<uint32_t> holder_ = 0;
  const State state_;
};

}  // namespace ov
