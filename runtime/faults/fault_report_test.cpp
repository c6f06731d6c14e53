#include "runtime/faults/fault_report.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "runtime/log/lock.h"
#include "runtime/ov_log.h"
#include "runtime/sync/bounded_lock.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::BoundedLock;
using ov::FaultReport;
using ov::TempFolder;

TEST(FaultReportTest, IsTheThreadsOwnAndEndsWithItsScope) {
  EXPECT_EQ(nullptr, FaultReport::ofThisThread());
  {
    const FaultReport report;
    EXPECT_TRUE(report);
    EXPECT_NE(nullptr, FaultReport::ofThisThread());
    std::thread([] { EXPECT_EQ(nullptr, FaultReport::ofThisThread()); }).join();
  }
  EXPECT_EQ(nullptr, FaultReport::ofThisThread());
}

TEST(FaultReportTest, DoesNotBeginAgainInsideItself) {
  const FaultReport outer;
  {
    const FaultReport inner;
    EXPECT_FALSE(inner);
  }
  EXPECT_NE(nullptr, FaultReport::ofThisThread());
}

// The frame that asks for the names, seen from the one that it reports to.
[[gnu::noinline]] size_t stackOfReport(const FaultReport& report) {
  static uintptr_t lowest;
  lowest = 0;
  FaultReport::Slot& slot = report.slot();
  slot.backtrace.count = 1;
  ov::log_backtrace(slot.backtrace, slot.line, [](void*, uint32_t, ov::Symbol*) {
    lowest = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    return true;
  });
  return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) - lowest;
}

TEST(FaultReportTest, FramesAndTextsOfAReportAreNotOnTheStackThatMayHaveRunOut) {
  const FaultReport report;
  ASSERT_TRUE(report);
  EXPECT_GT(sizeof(ov::Symbol) + 1024, stackOfReport(report));
}

TEST(FaultReportTest, ThreadsBeyondTheRoomHaveNone) {
  constexpr int kThreadCount = 20;
  std::atomic<int> entered = 0;
  std::atomic<int> reports = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreadCount; ++i) {
    threads.emplace_back([&] {
      const FaultReport report;
      if (report) ++reports;
      ++entered;
      while (entered < kThreadCount) std::this_thread::yield();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(16, reports);
  const FaultReport after;
  EXPECT_TRUE(after);
}

TEST(BoundedLockTest, HolderAndTimeEndTheWait) {
  BoundedLock lock;
  ASSERT_TRUE(lock.acquire(0));
  EXPECT_FALSE(lock.acquire(1000000));
  std::thread([&lock] { EXPECT_FALSE(lock.acquire(5)); }).join();
  lock.release();
  std::thread([&lock] {
    EXPECT_TRUE(lock.acquire(0));
    lock.release();
  }).join();
}

TEST(BoundedLockTest, LetsOneInAtATime) {
  BoundedLock lock;
  int inside = 0;
  int total = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(lock.acquire(60000));
        ASSERT_EQ(1, ++inside);
        ++total;
        --inside;
        lock.release();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(2000, total);
}

class ReportedLogTest : public testing::Test {
 protected:
  void SetUp() override {
    ov_log_cleanup();
    ASSERT_EQ(0, ov_log_init(2, folder_.path("app.log").c_str()));
    ov_log("%s", folder_.path().c_str());
  }
  void TearDown() override { ov_log_cleanup(); }

  int count(const std::string& message) const {
    const std::string text = TempFolder::read(folder_.path("app.log"));
    const std::regex line("\\] " + message + "\r\n");
    return static_cast<int>(
        std::distance(std::sregex_iterator(text.begin(), text.end(), line), {}));
  }

  TempFolder folder_;
};

TEST_F(ReportedLogTest, LinesOfAReportAreNotFolded) {
  const FaultReport report;
  for (int i = 0; i < 3; ++i) ov_err("same");
  EXPECT_EQ(3, count("ERR same"));
}

TEST_F(ReportedLogTest, LinesOfAReportDoNotRotate) {
  ov_log_set_logfile_size(0);
  const FaultReport report;
  const std::string filler(4000, 'x');
  for (int i = 0; i < 40; ++i) ov_err("%s", filler.c_str());
  ov_log_set_logfile_size(10);
  EXPECT_EQ(40, count("ERR x+"));
}

TEST_F(ReportedLogTest, FaultUnderTheLogsOwnLockIsReportedDirectly) {
  const ov::LogLock held;
  const FaultReport report;
  ov_err("from inside");
  ov_log_flush();
  EXPECT_EQ(1, count("ERR from inside"));
}

TEST_F(ReportedLogTest, LogHeldByAnotherThreadIsWaitedForOnceAndThenLost) {
  auto held = std::make_unique<ov::LogLock>();
  std::thread([] {
    const FaultReport report;
    for (int i = 0; i < 70; ++i) ov_err("lost");
    ov_log_flush();
    EXPECT_LE(1000u, FaultReport::ofThisThread()->waited);
  }).join();
  held.reset();
  EXPECT_EQ(0, count("ERR lost"));
  ov_err("after");
  EXPECT_EQ(1, count("ERR after"));
}

TEST_F(ReportedLogTest, LogThatComesFreeIsUsed) {
  auto held = std::make_unique<ov::LogLock>();
  std::atomic<bool> started = false;
  std::thread thread([&started] {
    const FaultReport report;
    started = true;
    ov_err("late");
  });
  while (!started) std::this_thread::yield();
  held.reset();
  thread.join();
  EXPECT_EQ(1, count("ERR late"));
}

}  // namespace
