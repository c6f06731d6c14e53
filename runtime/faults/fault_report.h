// Marks the calling thread, for a scope, as one that reports a hard fault of its own to the log.
// Whatever the fault has interrupted, the report must neither wait for ever nor begin again inside
// itself. Needs no set-up and allocates nothing.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "runtime/faults/backtrace.h"
#include "runtime/ov_threads.h"

namespace ov {

class FaultReport {
 public:
  FaultReport() : slot_(enter(ov_thread_self())) {}
  ~FaultReport() {
    if (slot_ == nullptr) return;
    slot_->thread.store(0, std::memory_order_release);
    count_.fetch_sub(1, std::memory_order_relaxed);
  }
  FaultReport(const FaultReport&) = delete;
  FaultReport& operator=(const FaultReport&) = delete;

  // False when there is to be no report: the thread is in one already, or too many others are.
  explicit operator bool() const { return slot_ != nullptr; }

  struct Slot {
    std::atomic<uint32_t> thread;  // its id, 0 for a free slot; a thread finds its own only here
    // The thread's own, here and not on its stack, which may be what has run out: milliseconds
    // spent on waiting for the log, the frames, and the text of a line.
    uint32_t waited;
    Backtrace backtrace;
    char line[kBacktraceLineRoom];
  };

  // Not for a report that is not to be.
  Slot& slot() const { return *slot_; }

  // The report of the calling thread, null outside of one. A comparison while no thread is in one.
  static Slot* ofThisThread() {
    return count_.load(std::memory_order_relaxed) == 0 ? nullptr : find(ov_thread_self());
  }

 private:
  // Threads that may fail at the same moment, each with a report of its own.
  static constexpr size_t kRoom = 16;

  static Slot* find(uint32_t thread) {
    for (Slot& slot : slots_) {
      if (slot.thread.load(std::memory_order_relaxed) == thread) return &slot;
    }
    return nullptr;
  }

  static Slot* enter(uint32_t thread) {
    if (find(thread) != nullptr) return nullptr;
    for (Slot& slot : slots_) {
      uint32_t free = 0;
      if (!slot.thread.compare_exchange_strong(free, thread, std::memory_order_acquire)) continue;
      slot.waited = 0;
      count_.fetch_add(1, std::memory_order_relaxed);
      return &slot;
    }
    return nullptr;
  }

  static inline constinit Slot slots_[kRoom] = {};
  static inline std::atomic<uint32_t> count_ = 0;

  Slot* const slot_;
};

}  // namespace ov
