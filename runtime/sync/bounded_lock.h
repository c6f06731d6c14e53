// A lock that waits for a bounded time only and knows its holder. It needs no set-up and no end, so
// that it serves while the library goes, and neither a fault in the work that it guards nor a
// holder that will never come back stops a thread for ever.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/ov_threads.h"
#include "runtime/sync/coarse_clock.h"

namespace ov {

// A wait in short sleeps. It is the clock that ends it and not their number: on Windows each of
// them lasts for up to 15.6 ms, a tick of the system. For one thread.
class BoundedWait {
 public:
  explicit BoundedWait(uint32_t milliseconds) : patience_(milliseconds) {}

  // Sleeps for a moment; false, without a sleep, once the time is over.
  bool goOn() {
    if (waited_ >= patience_) return false;
    if (begin_ == 0) begin_ = coarse_milliseconds();
    ov_thread_sleep(kMoment);
    waited_ = coarse_milliseconds() - begin_;
    return true;
  }
  // Milliseconds so far.
  uint64_t waited() const { return waited_; }

 private:
  static constexpr uint32_t kMoment = 1;  // milliseconds

  const uint32_t patience_;
  uint64_t begin_ = 0;  // of the first sleep
  uint64_t waited_ = 0;
};

class BoundedLock {
 public:
  // False when the calling thread holds it already, at once, or when the time ran out.
  bool acquire(uint32_t milliseconds) {
    const uint32_t self = ov_thread_self();
    for (BoundedWait wait(milliseconds);;) {
      uint32_t free = 0;
      if (holder_.compare_exchange_strong(free, self, std::memory_order_acquire)) return true;
      if (free == self || !wait.goOn()) return false;
    }
  }
  void release() { holder_.store(0, std::memory_order_release); }

 private:
  std::atomic<uint32_t> holder_ = 0;  // thread id, 0 for none
};

}  // namespace ov
