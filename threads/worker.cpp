#include "threads/worker.h"

#include "runtime/ov_log.h"
#include "threads/guarded.h"
#include "threads/platform.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

// A zeroed record: joining a thread that never came to be then fails cleanly.
Worker::Worker() : thread_(std::make_unique<ov_thread>()) {}

Worker::~Worker() = default;

void Worker::start() {
  started_ = true;
  if (const ov_rc code = ov_thread_spawn(thread_.get(), startHelper, this)) {
    *thread_ = {};
    throw SystemException(describeSystemError("Failed to spawn thread: ", code));
  }
  threadExists_ = true;
}

Worker::ThreadResult Worker::startHelper(void* argument) {
  const int32_t result = initializeThreadCom();
  if (result < 0) {
    ov_err("Worker start_helper() - CoInitialize failed: %x", static_cast<unsigned>(result));
  }
  guarded([argument] { static_cast<Worker*>(argument)->run(); });
  uninitializeThreadCom();
  return 0;
}

void Worker::join() {
  const bool finished = done();
  OV_DEBUG("Worker::join() - started?=%u done?=%u", started_ ? 1U : 0U, finished ? 1U : 0U);
  if (!started_) return;
  if (finished) {
    waitForFinishedThread();
    return;
  }
  if (const ov_rc code = ov_thread_join(thread_.get())) {
    const std::string text = describeSystemError("Failed to join thread: ", code) +
                             std::to_string(ov_thread_getid(thread_.get()));
    ov_err("%s", text.c_str());
    throw SystemException(text);
  }
  threadExists_ = false;
  OV_DEBUG("Worker::join() - done");
}

// A thread that has finished its work still runs our code for a moment; the library must not be
// unloaded under it, and its handle is to be closed.
void Worker::waitForFinishedThread() {
  if (threadExists_ && ov_thread_join(thread_.get()) == 0) threadExists_ = false;
}

}  // namespace Vantrel::Web
