// A worker over a platform that fails where a case wants it: COM is replaced here, the linker sends
// the thread calls here.
#include "threads/worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "threads/platform.h"
#include "threads/system_exception.h"

namespace {

struct Platform {
  int32_t comResult = 0;
  std::atomic<int> comEnds{0};
  ov_rc spawnCode = 0;
  ov_rc joinCode = 0;
};

Platform* platform = nullptr;

}  // namespace

extern "C" {

ov_rc __real_ov_thread_spawn(ov_thread* thread, ov_thread_fn function, void* argument);
ov_rc __wrap_ov_thread_spawn(ov_thread* thread, ov_thread_fn function, void* argument) {
  if (platform->spawnCode != 0) return platform->spawnCode;
  return __real_ov_thread_spawn(thread, function, argument);
}

ov_rc __real_ov_thread_join(ov_thread* thread);
ov_rc __wrap_ov_thread_join(ov_thread* thread) {
  if (platform->joinCode != 0) return platform->joinCode;
  return __real_ov_thread_join(thread);
}

}  // extern "C"

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return platform->comResult;
}
void uninitializeThreadCom() {
  ++platform->comEnds;
}

namespace {

class BriefWorker : public Worker {
 public:
  bool done() override { return finished && reportsDone; }
  void run() override {
    finished = true;
    if (throws) throw std::runtime_error("100% broken");
  }
  void stop() override {}

  std::atomic<bool> finished{false};
  bool reportsDone = true;
  bool throws = false;
};

class WorkerFailureTest : public testing::Test {
 protected:
  WorkerFailureTest() { platform = &fake_; }

  Platform fake_;
  TestSupport::LogRecorder log_;
  BriefWorker worker_;
};

TEST_F(WorkerFailureTest, FailingComIsReportedAndTheWorkRunsAllTheSame) {
  fake_.comResult = static_cast<int32_t>(0x80010106U);
  worker_.start();
  worker_.reportsDone = false;
  worker_.join();
  EXPECT_TRUE(worker_.finished);
  EXPECT_EQ(fake_.comEnds, 1);
  EXPECT_EQ(log_.lines("ERR"),
            std::vector<std::string>{"Worker start_helper() - CoInitialize failed: 80010106"});
}

TEST_F(WorkerFailureTest, ComThatWasUpAlreadyIsNoFailure) {
  fake_.comResult = 1;
  worker_.start();
  worker_.join();
  EXPECT_EQ(fake_.comEnds, 1);
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
}

TEST_F(WorkerFailureTest, WhatTheWorkThrowsIsLoggedAndTheThreadEnds) {
  worker_.throws = true;
  worker_.start();
  worker_.join();
  EXPECT_EQ(fake_.comEnds, 1);
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{"100% broken"});
}

TEST_F(WorkerFailureTest, FailedStartThrowsAndLogsNothing) {
  fake_.spawnCode = 8;
  const std::string expected = describeSystemError("Failed to spawn thread: ", 8);
  try {
    worker_.start();
    FAIL();
  } catch (const SystemException& error) {
    EXPECT_EQ(error.what(), expected);
  }
  EXPECT_EQ(log_.text(), "");
  EXPECT_FALSE(worker_.hasThread());
}

TEST_F(WorkerFailureTest, JoinAfterAFailedStartReportsAndThrows) {
  fake_.spawnCode = 8;
  EXPECT_THROW(worker_.start(), SystemException);
  const std::string expected = describeSystemError("Failed to join thread: ", 6) + "0";
  try {
    worker_.join();
    FAIL();
  } catch (const SystemException& error) {
    EXPECT_EQ(error.what(), expected);
  }
  EXPECT_EQ(log_.lines("ERR").back(), expected);
  EXPECT_FALSE(worker_.hasThread());
  EXPECT_EQ(log_.countContaining("DBG Worker::join() - started?=1 done?=0"), 1U);
}

TEST_F(WorkerFailureTest, FailedJoinReportsTheThreadsIdAndKeepsTheThread) {
  worker_.reportsDone = false;
  worker_.start();
  fake_.joinCode = 6;
  try {
    worker_.join();
    FAIL();
  } catch (const SystemException& error) {
    const std::string text = error.what();
    const std::string start = describeSystemError("Failed to join thread: ", 6);
    EXPECT_EQ(text.rfind(start, 0), 0U) << text;
    EXPECT_GT(std::stoul(text.substr(start.size())), 0U);
    EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{text});
  }
  EXPECT_TRUE(worker_.hasThread());
  fake_.joinCode = 0;
  worker_.join();
  EXPECT_FALSE(worker_.hasThread());
}

TEST_F(WorkerFailureTest, FailedWaitForAFinishedWorkerIsSilent) {
  worker_.start();
  while (!worker_.done()) ov_thread_sleep(1);
  fake_.joinCode = 6;
  worker_.join();
  EXPECT_TRUE(worker_.hasThread());
  EXPECT_TRUE(log_.lines("ERR").empty()) << log_.text();
  fake_.joinCode = 0;
  worker_.join();
  EXPECT_FALSE(worker_.hasThread());
}

}  // namespace
}  // namespace Vantrel::Web
