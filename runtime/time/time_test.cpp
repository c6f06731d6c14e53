#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_time.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Lines = std::vector<std::string>;

bool same(const ov_timeval& a, const ov_timeval& b) {
  return a.sec == b.sec && a.usec == b.usec;
}

TEST(TimeTest, ClockStartsOnceAndTellsItsFrequency) {
  EXPECT_EQ(0, ov_time_init());
  EXPECT_EQ(0, ov_time_init());
  uint64_t frequency = 0;
  ov_time_sys_tick_frequency(&frequency);
  EXPECT_EQ(10000000u, frequency);
  ov_time_sys_tick_frequency(nullptr);
}

TEST(TimeTest, ClockIsStartedByItsFirstReading) {
  ov_timeval now = {-1, -1};
  EXPECT_EQ(0, ov_time_gettimeofday(&now));
  EXPECT_LE(0, now.sec);
  EXPECT_LE(0, now.usec);
  EXPECT_GT(1000000, now.usec);
  EXPECT_EQ(OV_EINVAL, ov_time_gettimeofday(nullptr));
}

TEST(TimeTest, ReadingsNeverGoBackInAnyThread) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      ov_timeval last = {0, 0};
      for (int n = 0; n < 2000; ++n) {
        ov_timeval now;
        ASSERT_EQ(0, ov_time_gettimeofday(&now));
        ASSERT_LE(0, ov_time_get_usec_diff(&now, &last));
        last = now;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(TimeTest, ConstantsAreLogged) {
  ASSERT_EQ(0, ov_time_init());
  ov::CapturedLog log;
  ov_time_print();
  const Lines lines = log.take();
  ASSERT_EQ(2u, lines.size());
  EXPECT_TRUE(lines[0].starts_with("LOG Time init: ticks per sec=10000000 start_ticks="))
      << lines[0];
  EXPECT_EQ("LOG            multipliers tick=2500000 usec=250000", lines[1]);
}

using Since = ov_rc (*)(const ov_timeval*, int64_t*);

ov_rc getnstore(const ov_timeval* earlier, int64_t* usec) {
  ov_timeval now;
  return ov_time_getnstore_usec_since(earlier, &now, usec);
}

struct SinceForm {
  const char* name;
  Since since;
};
const SinceForm kForms[] = {{"get_usec_since", &ov_time_get_usec_since},
                            {"get_usec_since_small", &ov_time_get_usec_since_small},
                            {"getnstore_usec_since", &getnstore}};

TEST(TimeTest, IntervalSinceAnEarlierReading) {
  for (const SinceForm& form : kForms) {
    ov_timeval earlier;
    ASSERT_EQ(0, ov_time_gettimeofday(&earlier));
    earlier.sec -= 100;
    int64_t usec = -1;
    EXPECT_EQ(0, form.since(&earlier, &usec));
    ov_timeval after;
    ASSERT_EQ(0, ov_time_gettimeofday(&after));
    EXPECT_LE(100000000, usec) << form.name;
    EXPECT_GE(ov_time_get_usec_diff(&after, &earlier), usec) << form.name;
  }
}

TEST(TimeTest, EarlierInTheFutureGives22AZeroAndOneLine) {
  ov::CapturedLog log;
  for (const SinceForm& form : kForms) {
    ov_timeval earlier;
    ASSERT_EQ(0, ov_time_gettimeofday(&earlier));
    ov_time_tv_incr(&earlier, 1000000000);
    int64_t usec = 5;
    EXPECT_EQ(OV_EINVAL, form.since(&earlier, &usec));
    EXPECT_EQ(0, usec);
    const Lines lines = log.take();
    ASSERT_EQ(1u, lines.size());
    EXPECT_TRUE(lines[0].starts_with("ERR " + std::string(form.name) + ": big old " +
                                     std::to_string(earlier.sec) + "." +
                                     std::to_string(earlier.usec) + " > "))
        << lines[0];
  }
}

TEST(TimeTest, ChainOfIntervalsMayKeepOneRecord) {
  ov_timeval mark;
  ASSERT_EQ(0, ov_time_gettimeofday(&mark));
  mark.sec -= 10;
  const ov_timeval first = mark;
  int64_t usec = -1;
  EXPECT_EQ(0, ov_time_getnstore_usec_since(&mark, &mark, &usec));
  EXPECT_EQ(ov_time_get_usec_diff(&mark, &first), usec);
  EXPECT_LE(10000000, usec);
}

TEST(TimeTest, MissingArgumentsGive22) {
  ov_timeval tv = {0, 0};
  int64_t usec = 5;
  for (const SinceForm& form : kForms) {
    EXPECT_EQ(OV_EINVAL, form.since(nullptr, &usec));
    EXPECT_EQ(OV_EINVAL, form.since(&tv, nullptr));
  }
  EXPECT_EQ(OV_EINVAL, ov_time_getnstore_usec_since(&tv, nullptr, &usec));
  EXPECT_EQ(5, usec);
  ov_time_tv_incr(nullptr, 1);
  ov_time_tv_dec(nullptr, 1);
  EXPECT_EQ(0, ov_time_get_usec_diff(nullptr, &tv));
}

TEST(TimeTest, DifferenceIsInMicrosecondsOf64Bits) {
  const ov_timeval a = {5, 100};
  const ov_timeval b = {3, 999999};
  EXPECT_EQ(1000101, ov_time_get_usec_diff(&a, &b));
  EXPECT_EQ(-1000101, ov_time_get_usec_diff(&b, &a));
  const ov_timeval least = {INT32_MIN, 0};
  const ov_timeval most = {INT32_MAX, 999999};
  EXPECT_EQ(4294967295LL * 1000000 + 999999, ov_time_get_usec_diff(&most, &least));
}

TEST(TimeTest, IncrementCarriesOneSecond) {
  ov_timeval tv = {1, 999999};
  ov_time_tv_incr(&tv, 1);
  EXPECT_TRUE(same({2, 0}, tv));
  ov_time_tv_incr(&tv, 3500000);
  EXPECT_TRUE(same({5, 500000}, tv));
  ov_time_tv_incr(&tv, 1999999);
  EXPECT_TRUE(same({7, 499999}, tv));
}

TEST(TimeTest, DecrementTakesOneSecondAtMost) {
  ov_timeval tv = {5, 200000};
  ov_time_tv_dec(&tv, 1500000);
  EXPECT_TRUE(same({4, 200000}, tv));
  ov_time_tv_dec(&tv, 200000);
  EXPECT_TRUE(same({4, 0}, tv));
  ov_time_tv_dec(&tv, 1);
  EXPECT_TRUE(same({3, 999999}, tv));
}

}  // namespace
