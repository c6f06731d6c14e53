#include "threads/worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_errors.h"
#include "tests/support/log_recorder.h"
#include "threads/mutex.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {
namespace {

// Runs until it is told to stop.
class WaitingWorker : public Worker {
 public:
  bool done() override { return done_; }
  void run() override {
    threadId = ov_thread_self();
    {
      const std::lock_guard lock(mutex_);
      while (!stopRequested_) condition_.wait();
    }
    done_ = true;
  }
  void stop() override {
    if (done_) return;
    const std::lock_guard lock(mutex_);
    stopRequested_ = true;
    condition_.signal();
  }
  void waitUntilDone() {
    while (!done_) ov_thread_sleep(1);
  }

  std::atomic<uint32_t> threadId{0};

 private:
  std::atomic<bool> done_{false};
  Mutex mutex_;
  Condition condition_{mutex_};
  bool stopRequested_ = false;
};

constexpr char kJoinDone[] = "DBG Worker::join() - done";

TEST(WorkerTest, RunsOnAThreadOfItsOwnAndIsJoined) {
  TestSupport::LogRecorder log;
  WaitingWorker worker;
  EXPECT_FALSE(worker.hasThread());
  worker.start();
  EXPECT_TRUE(worker.hasThread());
  // The stop comes from another thread while join waits, so that join finds the worker running.
  std::thread stopper([&] {
    while (log.countContaining("Worker::join()") == 0) ov_thread_sleep(1);
    worker.stop();
  });
  worker.join();
  stopper.join();
  EXPECT_FALSE(worker.hasThread());
  EXPECT_TRUE(worker.done());
  EXPECT_NE(worker.threadId, 0U);
  EXPECT_NE(worker.threadId, ov_thread_self());
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{"DBG Worker::join() - started?=1 done?=0", kJoinDone}));
}

TEST(WorkerTest, NeverStartedWorkerIsStoppedAndJoinedAtOnce) {
  TestSupport::LogRecorder log;
  WaitingWorker worker;
  worker.stop();
  worker.join();
  EXPECT_EQ(log.lines(), std::vector<std::string>{"DBG Worker::join() - started?=0 done?=0"});
}

TEST(WorkerTest, FinishedWorkerIsWaitedForSilentlyAndLosesItsThread) {
  TestSupport::LogRecorder log;
  WaitingWorker worker;
  worker.start();
  worker.stop();
  worker.waitUntilDone();
  EXPECT_TRUE(worker.hasThread());
  worker.join();
  EXPECT_FALSE(worker.hasThread());
  EXPECT_EQ(log.lines(), std::vector<std::string>{"DBG Worker::join() - started?=1 done?=1"});
  worker.join();
  EXPECT_EQ(log.count(kJoinDone), 0U);
  EXPECT_TRUE(log.lines("ERR").empty()) << log.text();
}

TEST(WorkerTest, StopOfAFinishedWorkerDoesNothing) {
  WaitingWorker worker;
  worker.start();
  worker.stop();
  worker.join();
  worker.stop();
  EXPECT_TRUE(worker.done());
}

TEST(WorkerTest, ManyWorkersLiveAtTheSameTime) {
  std::vector<std::unique_ptr<WaitingWorker>> workers;
  for (int i = 0; i < 20; ++i) {
    workers.push_back(std::make_unique<WaitingWorker>());
    workers.back()->start();
  }
  for (auto& worker : workers) worker->stop();
  for (auto& worker : workers) worker->join();
  for (auto& worker : workers) EXPECT_TRUE(worker->done());
}

TEST(SystemExceptionTest, CarriesItsMessageAlsoAsACopy) {
  const SystemException exception("message");
  const SystemException copy(exception);
  EXPECT_STREQ(copy.what(), "message");
  EXPECT_THROW(throw SystemException(copy), std::runtime_error);
}

TEST(SystemExceptionTest, DescribesACodeWithThePlatformsText) {
  char text[4096] = "";
  ov_platform_errstr(5, text, sizeof text);
  EXPECT_EQ(describeSystemError("Failed: ", 5), std::string("Failed: ") + text + " (5)");
  EXPECT_EQ(describeSystemError("Failed: ", 28674).rfind("Failed: ", 0), 0U);
}

}  // namespace
}  // namespace Vantrel::Web
