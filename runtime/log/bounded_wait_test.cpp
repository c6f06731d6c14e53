// The waits that a fault's report makes, on a clock of the test's own: each sleep takes as long as
// one does on Windows, whatever was asked for. The linker puts both calls in place of the
// platform's (--wrap).
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <thread>

#include "runtime/faults/fault_report.h"
#include "runtime/log/lock.h"
#include "runtime/ov_threads.h"
#include "runtime/sync/bounded_lock.h"

namespace {

constexpr uint64_t kTick = 16;

// Used by one thread at a time.
uint64_t now = 1;
int sleeps = 0;

}  // namespace

extern "C" {
uint64_t __wrap__ZN2ov19coarse_millisecondsEv();
ov_rc __wrap_ov_thread_sleep(uint32_t milliseconds);

uint64_t __wrap__ZN2ov19coarse_millisecondsEv() {
  return now;
}
ov_rc __wrap_ov_thread_sleep(uint32_t) {
  ++sleeps;
  now += kTick;
  return 0;
}
}

namespace {

using ov::BoundedLock;
using ov::FaultReport;

// Sleeps that make up this time.
constexpr int sleepsFor(uint64_t milliseconds) {
  return static_cast<int>((milliseconds + kTick - 1) / kTick);
}

class BoundedWaitTest : public testing::Test {
 protected:
  void SetUp() override { sleeps = 0; }
};

TEST_F(BoundedWaitTest, ALockIsWaitedForAsLongAsWasSaid) {
  BoundedLock lock;
  ASSERT_TRUE(lock.acquire(0));
  for (const uint32_t patience : {0U, 1U, 16U, 500U, 5000U}) {
    sleeps = 0;
    std::thread([&] { EXPECT_FALSE(lock.acquire(patience)); }).join();
    EXPECT_EQ(sleepsFor(patience), sleeps) << patience;
  }
}

TEST_F(BoundedWaitTest, TheLinesOfAReportWaitForTheLogTogether) {
  static constexpr uint32_t kPatience = 1000;
  auto held = std::make_unique<ov::LogLock>();
  std::thread([] {
    const FaultReport report;
    for (int line = 0; line < 3; ++line) {
      const ov::LogLock refused;
      EXPECT_FALSE(refused);
    }
    EXPECT_LE(kPatience, FaultReport::ofThisThread()->waited);
  }).join();
  EXPECT_EQ(sleepsFor(kPatience), sleeps);
}

}  // namespace
