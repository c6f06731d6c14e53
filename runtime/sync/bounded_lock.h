// A lock that waits for a bounded time only and knows its holder. It needs no set-up and no end, so
// that it serves while the library goes, and neither a fault in the work that it guards nor a
// holder that will never come back stops a thread for ever.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/ov_threads.h"

namespace ov {

class BoundedLock {
 public:
  // False when the calling thread holds it already, at once, or when the time ran out.
  bool acquire(uint32_t milliseconds) {
    const uint32_t self = ov_thread_self();
    for (uint32_t waited = 0;; waited += kStep) {
      uint32_t free = 0;
      if (holder_.compare_exchange_strong(free, self, std::memory_order_acquire)) return true;
      if (free == self || waited >= milliseconds) return false;
      ov_thread_sleep(kStep);
    }
  }
  void release() { holder_.store(0, std::memory_order_release); }

 private:
  static constexpr uint32_t kStep = 1;  // milliseconds between two tries
  std::atomic<uint32_t> holder_ = 0;    // thread id, 0 for none
};

}  // namespace ov
