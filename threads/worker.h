// Abstract base of the long-lived background threads. It owns the thread, prepares it for COM and
// knows the order of a worker's life: start(), stop(), join(), then deletion by its owner.
//
// start(), stop(), join() and the destructor are called on the browser's thread; only run() and
// what it calls run on the worker's thread.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/ov_threads.h"

namespace Vantrel::Web {

class Worker {
 public:
  Worker();
  // Neither stops nor joins: that has happened before.
  virtual ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Whether run() has performed its last act. Any thread.
  virtual bool done() = 0;
  // The thread's body. Lets no exception out.
  virtual void run() = 0;
  // Asks run() to end. Does not block for long, and does nothing once done() is true.
  virtual void stop() = 0;

  // Starts the thread; throws SystemException if there is none.
  void start();
  // Waits for the end of the thread, if it was started; throws SystemException if that fails. A
  // worker whose join has thrown while hasThread() is true must not be deleted: its thread may run.
  void join();
  // Whether a thread was started and not yet waited for.
  bool hasThread() const { return threadExists_; }

 protected:
  bool started_ = false;

 private:
#if defined(_WIN32)
  using ThreadResult = unsigned long;
#else
  using ThreadResult = uint32_t;
#endif
  static ThreadResult startHelper(void* argument);
  void waitForFinishedThread();

  std::unique_ptr<ov_thread> thread_;
  bool threadExists_ = false;
};

}  // namespace Vantrel::Web
