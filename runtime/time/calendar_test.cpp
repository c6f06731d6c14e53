#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "runtime/ov_errors.h"
#include "runtime/ov_time.h"

namespace {

// 2026-03-09 17:02:11 UTC, a Monday.
constexpr int64_t kMoment = 1773075731;

std::string format(const char* text, size_t size = 64) {
  std::string out(size, '#');
  std::tm tm;
  EXPECT_EQ(0, ov_time_gmtime(&kMoment, &tm));
  const ov_rc result = ov_time_strftime(out.data(), size, text, &tm);
  return result == 0 ? out.c_str() : "error " + std::to_string(result);
}

TEST(CalendarTest, TimesBreakDownAndComeBack) {
  std::tm tm;
  ASSERT_EQ(0, ov_time_gmtime(&kMoment, &tm));
  EXPECT_EQ(126, tm.tm_year);
  EXPECT_EQ(2, tm.tm_mon);
  EXPECT_EQ(9, tm.tm_mday);
  EXPECT_EQ(17, tm.tm_hour);
  EXPECT_EQ(2, tm.tm_min);
  EXPECT_EQ(11, tm.tm_sec);
  EXPECT_EQ(1, tm.tm_wday);
  int64_t time = 0;
  EXPECT_EQ(0, ov_time_timegm(&tm, &time));
  EXPECT_EQ(kMoment, time);
  ASSERT_EQ(0, ov_time_localtime(&kMoment, &tm));
  EXPECT_EQ(0, ov_time_mktime(&tm, &time));
  EXPECT_EQ(kMoment, time);
}

TEST(CalendarTest, TimesThatDoNotExistGive22) {
  const int64_t before = -1;
  const int64_t far = INT64_MAX;
  std::tm tm = {};
  int64_t time = 0;
  EXPECT_EQ(OV_EINVAL, ov_time_gmtime(&before, &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_gmtime(&far, &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_localtime(&far, &tm));
  tm = {};
  tm.tm_year = -100;
  EXPECT_EQ(OV_EINVAL, ov_time_timegm(&tm, &time));
  tm = {};
  tm.tm_year = -100;
  EXPECT_EQ(OV_EINVAL, ov_time_mktime(&tm, &time));
}

TEST(CalendarTest, MissingArgumentsGive22) {
  std::tm tm = {};
  int64_t time = 0;
  char out[8] = "#";
  EXPECT_EQ(OV_EINVAL, ov_time_gmtime(nullptr, &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_gmtime(&time, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_time_localtime(nullptr, &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_localtime(&time, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_time_timegm(nullptr, &time));
  EXPECT_EQ(OV_EINVAL, ov_time_timegm(&tm, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_time_mktime(nullptr, &time));
  EXPECT_EQ(OV_EINVAL, ov_time_mktime(&tm, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_time_strftime(nullptr, 8, "%Y", &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_strftime(out, 0, "%Y", &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_strftime(out, 8, nullptr, &tm));
  EXPECT_EQ(OV_EINVAL, ov_time_strftime(out, 8, "%Y", nullptr));
  EXPECT_EQ('#', out[0]);
}

TEST(CalendarTest, FileTimesBecomeSecondsSince1970) {
  int64_t time = 5;
  EXPECT_EQ(0, ov_time_convert_epoch(&time, 116444736000000000));
  EXPECT_EQ(0, time);
  EXPECT_EQ(0, ov_time_convert_epoch(&time, 116444736000000000 + kMoment * 10000000 + 9999999));
  EXPECT_EQ(kMoment, time);
  EXPECT_EQ(0, ov_time_convert_epoch(&time, 0));
  EXPECT_EQ(-11644473600, time);
  EXPECT_EQ(0, ov_time_convert_epoch(nullptr, 0));
}

TEST(CalendarTest, FormatsAsTheStandardLibrary) {
  EXPECT_EQ("2026-03-09 17:02:11", format("%Y-%m-%d %H:%M:%S"));
  EXPECT_EQ("100%", format("100%%"));
}

TEST(CalendarTest, MillisecondsAre000AndEveryOneIsExpanded) {
  EXPECT_EQ("000", format("%L"));
  EXPECT_EQ("11.000 000", format("%S.%L %L"));
  EXPECT_EQ("%L%z", format("%%L%%z"));
  EXPECT_EQ("L", format("L"));
}

TEST(CalendarTest, TextThatDoesNotFitOrIsEmptyGives122AndLeavesTheBuffer) {
  EXPECT_EQ("2026", format("%Y", 5));
  EXPECT_EQ("error 122", format("%Y", 4));
  EXPECT_EQ("error 122", format(""));
  char out[4] = "###";
  std::tm tm;
  ASSERT_EQ(0, ov_time_gmtime(&kMoment, &tm));
  EXPECT_EQ(OV_ERANGE, ov_time_strftime(out, sizeof out, "%Y", &tm));
  EXPECT_STREQ("###", out);
}

TEST(CalendarTest, LongTextsAreFormattedToo) {
  const std::string text(2000, 'x');
  EXPECT_EQ(text + "2026", format((text + "%Y").c_str(), 2005));
  EXPECT_EQ("error 122", format((text + "%Y").c_str(), 2004));
}

TEST(CalendarTest, FormsOfATimeBreakItDownFirst) {
  char out[64];
  ov_time_strftime_sec(out, sizeof out, "%H:%M:%S.%L", &kMoment);
  EXPECT_STREQ("17:02:11.000", out);
  std::tm tm;
  ASSERT_EQ(0, ov_time_localtime(&kMoment, &tm));
  char expected[64];
  ASSERT_NE(0u, strftime(expected, sizeof expected, "%d %H:%M", &tm));
  ov_time_strftime_sec_local(out, sizeof out, "%d %H:%M", &kMoment);
  EXPECT_STREQ(expected, out);
  const ov_timeval tv = {1773075731, 45678};
  ov_time_strftime_usec(out, sizeof out, "%S.%L %L", &tv);
  EXPECT_STREQ("11.045 045", out);
  const ov_timeval too_many = {1773075731, 2000000};
  ov_time_strftime_usec(out, sizeof out, "%L", &too_many);
  EXPECT_STREQ("999", out);
}

TEST(CalendarTest, FormsOfATimeLeaveTheBufferOnFailure) {
  char out[4] = "###";
  const int64_t before = -1;
  const ov_timeval negative = {-1, 0};
  ov_time_strftime_sec(out, sizeof out, "%Y", &kMoment);
  ov_time_strftime_sec(out, sizeof out, "%m", &before);
  ov_time_strftime_sec(out, sizeof out, "%m", nullptr);
  ov_time_strftime_sec(out, 0, "%m", &kMoment);
  ov_time_strftime_sec(nullptr, sizeof out, "%m", &kMoment);
  ov_time_strftime_sec_local(out, sizeof out, "%m", nullptr);
  ov_time_strftime_usec(out, sizeof out, "%m", nullptr);
  ov_time_strftime_usec(out, sizeof out, "%m", &negative);
  EXPECT_STREQ("###", out);
}

}  // namespace
