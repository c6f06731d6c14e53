#include "threads/worker.h"

#include "runtime/ov_log.h"
#include "threads/system_exception.h"
#include "threads/thread_com.h"

namespace Vantrel::Web {

// A zeroed record: joining a thread that never came to be then fails cleanly.
Worker::Worker() : thread(std::make_unique<ov_thread>()) {}

Worker::~Worker() = default;

void Worker::start() {
  started = true;
  if (const ov_rc code = ov_thread_spawn(thread.get(), start_helper, this)) {
    *thread = {};
    throw SystemException(describeSystemError("Failed to spawn thread: ", code));
  }
  threadExists = true;
}

Worker::ThreadResult Worker::start_helper(void* argument) {
  const int32_t result = initializeThreadCom();
  if (result < 0) {
    ov_err("Worker start_helper() - CoInitialize failed: %x", static_cast<unsigned>(result));
  }
  static_cast<Worker*>(argument)->run();
  uninitializeThreadCom();
  return 0;
}

void Worker::join() {
  const bool finished = done();
  OV_DEBUG("Worker::join() - started?=%u done?=%u", unsigned{started}, unsigned{finished});
  if (!started) return;
  if (finished) {
    waitForFinishedThread();
    return;
  }
  if (const ov_rc code = ov_thread_join(thread.get())) {
    const std::string text = describeSystemError("Failed to join thread: ", code) +
                             std::to_string(ov_thread_getid(thread.get()));
    ov_err("%s", text.c_str());
    throw SystemException(text);
  }
  threadExists = false;
  OV_DEBUG("Worker::join() - done");
}

// A thread that has finished its work still runs our code for a moment; the library must not be
// unloaded under it, and its handle is to be closed.
void Worker::waitForFinishedThread() {
  if (threadExists && ov_thread_join(thread.get()) == 0) threadExists = false;
}

}  // namespace Vantrel::Web
