// The clock over a counter that fails, or that has run for long.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "runtime/ov_time.h"
#include "tests/support/runtime/captured_log.h"

namespace {

bool frequency_fails = false;
bool counter_fails = false;
int64_t frequency = 10000000;
int64_t counter = 0;

BOOL WINAPI testQueryPerformanceFrequency(LARGE_INTEGER* value) {
  SetLastError(50);
  if (frequency_fails) return FALSE;
  value->QuadPart = frequency;
  return TRUE;
}

BOOL WINAPI testQueryPerformanceCounter(LARGE_INTEGER* value) {
  SetLastError(51);
  if (counter_fails) return FALSE;
  value->QuadPart = counter;
  return TRUE;
}

}  // namespace

extern "C" {
decltype(&QueryPerformanceFrequency) __imp_QueryPerformanceFrequency =
    &testQueryPerformanceFrequency;
decltype(&QueryPerformanceCounter) __imp_QueryPerformanceCounter = &testQueryPerformanceCounter;
}

namespace {

// One clock runs for the life of a process, so its states follow each other in one case.
TEST(ClockFailureTest, FailuresAreToldAndTheClockStartsAfterThem) {
  ov::CapturedLog log;
  ov_timeval now = {-1, -1};
  frequency_fails = true;
  EXPECT_EQ(50, ov_time_init());
  EXPECT_EQ(std::vector<std::string>{"LOG Error from QueryPerformanceFrequency, error=50"},
            log.take());
  EXPECT_EQ(50, ov_time_gettimeofday(&now));
  frequency_fails = false;
  counter_fails = true;
  EXPECT_EQ(51, ov_time_init());
  EXPECT_EQ(51, ov_time_gettimeofday(&now));
  counter_fails = false;
  counter = 1000;
  EXPECT_EQ(0, ov_time_init());
  counter += 12345678;
  EXPECT_EQ(0, ov_time_gettimeofday(&now));
  EXPECT_EQ(1, now.sec);
  EXPECT_EQ(234567, now.usec);
  counter_fails = true;
  int64_t usec = 7;
  EXPECT_EQ(51, ov_time_gettimeofday(&now));
  EXPECT_EQ(51, ov_time_get_usec_since(&now, &usec));
  EXPECT_EQ(0, usec);
  counter_fails = false;

  // A year of ticks, far beyond the overflow of ticks times microseconds.
  counter = 1000 + 365LL * 86400 * frequency + 5;
  EXPECT_EQ(0, ov_time_gettimeofday(&now));
  EXPECT_EQ(365 * 86400, now.sec);
  EXPECT_EQ(0, now.usec);

  log.take();
  const ov_timeval later = {365 * 86400, 1};
  usec = 7;
  EXPECT_EQ(22, ov_time_get_usec_since(&later, &usec));
  EXPECT_EQ(0, usec);
  usec = 7;
  EXPECT_EQ(22, ov_time_get_usec_since_small(&later, &usec));
  EXPECT_EQ(0, usec);
  usec = 7;
  EXPECT_EQ(22, ov_time_getnstore_usec_since(&later, &now, &usec));
  EXPECT_EQ(0, usec);
  EXPECT_EQ((std::vector<std::string>{"ERR get_usec_since: big old 31536000.1 > 31536000.0",
                                      "ERR get_usec_since_small: big old 31536000.1 > 31536000.0",
                                      "ERR getnstore_usec_since: big old 31536000.1 > 31536000.0"}),
            log.take());
  const ov_timeval same = {365 * 86400, 0};
  EXPECT_EQ(0, ov_time_get_usec_since(&same, &usec));
  EXPECT_EQ(0, usec);
}

}  // namespace
