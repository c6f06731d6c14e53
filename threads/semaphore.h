// Owner of the base runtime's semaphore: a count that one thread waits for and any thread raises.
// No raise is lost, so a wait that begins later ends at once. The owner of the object destroys it
// when nobody uses it any more.
#pragma once

#include <cstdint>

#include "runtime/ov_threads.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

class Semaphore {
 public:
  Semaphore() {
    if (const ov_rc code = ov_sem_init(&semaphore_, 0)) {
      throw SystemException(describeSystemError("Failed to create semaphore: ", code));
    }
  }
  ~Semaphore() { ov_sem_destroy(&semaphore_); }
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  void post() { ov_sem_post(&semaphore_); }
  // Waits for a raise, or at most so many milliseconds; true when there was one.
  bool waitFor(int32_t milliseconds) { return ov_sem_trywait(&semaphore_, milliseconds) == 0; }

 private:
  ov_sem semaphore_ = nullptr;
};

}  // namespace Vantrel::Web
