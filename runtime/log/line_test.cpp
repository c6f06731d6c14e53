#include "runtime/log/line.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <string_view>

#include "runtime/ov_time.h"

namespace {

OV_PRINTF(3, 4) bool compose(ov::LogLine& line, int32_t level, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool result = line.compose(level, format, arguments);
  va_end(arguments);
  return result;
}

constexpr std::string_view kMoment = "2026-03-09 17:02:11";

TEST(LogLineTest, StampStandsDirectlyInFrontOfTheText) {
  ov::LogLine line;
  ASSERT_TRUE(compose(line, OV_LEVEL_LOG, "text %d", 5));
  EXPECT_EQ("LOG text 5", line.text());
  EXPECT_EQ("LOG text 5\r\n", line.textAndEnd());
  line.stamp(0, kMoment, 0x1a4c, 0xf10);
  EXPECT_EQ("2026-03-09 17:02:11 [1a4c-00000f10] LOG text 5\r\n", line.whole());
}

TEST(LogLineTest, NoteOfRepeatsOpensTheLineAndItsThreadIsNotPadded) {
  ov::LogLine line;
  ASSERT_TRUE(compose(line, OV_LEVEL_ERR, "x"));
  line.stamp(2, kMoment, 0x1a4c, 0xf10);
  EXPECT_EQ("Last message repeated 2 times\r\n2026-03-09 17:02:11 [1a4c-f10] ERR x\r\n",
            line.whole());
  line.stamp(INT32_MAX, kMoment, UINT32_MAX, UINT32_MAX);
  EXPECT_EQ(
      "Last message repeated 2147483647 times\r\n"
      "2026-03-09 17:02:11 [ffffffff-ffffffff] ERR x\r\n",
      line.whole());
}

TEST(LogLineTest, TextIsCutAt4093Bytes) {
  ov::LogLine line;
  for (const size_t length : {size_t{4089}, size_t{4090}, size_t{4091}, size_t{5000}}) {
    ASSERT_TRUE(compose(line, OV_LEVEL_DBG, "%s", std::string(length, 'x').c_str()));
    EXPECT_EQ("DBG " + std::string(4089, 'x'), line.text()) << length;
    EXPECT_EQ("DBG " + std::string(4089, 'x') + "\r\n", line.textAndEnd());
  }
  ASSERT_TRUE(compose(line, OV_LEVEL_DBG, "%s", std::string(4088, 'x').c_str()));
  EXPECT_EQ(4092u, line.text().size());
}

TEST(LogLineTest, TextThatCannotBeFormattedIsTold) {
  ov::LogLine line;
  const auto without_format_check = &compose;
  EXPECT_FALSE(without_format_check(line, OV_LEVEL_LOG, nullptr));
}

TEST(LogLineTest, IdsTakeFromOneToEightDigits) {
  ov::LogLine line;
  ASSERT_TRUE(compose(line, OV_LEVEL_DBG, "x"));
  line.stamp(0, kMoment, 0, 0);
  EXPECT_EQ("2026-03-09 17:02:11 [0-00000000] DBG x\r\n", line.whole());
  line.stamp(1, kMoment, 0, 0);
  EXPECT_EQ("Last message repeated 1 times\r\n2026-03-09 17:02:11 [0-0] DBG x\r\n", line.whole());
  line.stamp(0, kMoment, 0xfedcba98, 0x12345678);
  EXPECT_EQ("2026-03-09 17:02:11 [fedcba98-12345678] DBG x\r\n", line.whole());
}

// The text as the runtime's own time functions have it.
std::string expected(int64_t now) {
  std::tm time;
  EXPECT_EQ(0, ov_time_localtime(&now, &time));
  char text[64];
  EXPECT_EQ(0, ov_time_strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &time));
  return text;
}

TEST(LogClockTest, ShowsEachSecond) {
  ov::LogClock clock;
  for (const int64_t start : {int64_t{0}, int64_t{951868790}, int64_t{1773075720}}) {
    for (int64_t now = start; now < start + 20; ++now) {
      EXPECT_EQ(expected(now), clock.at(now));
      EXPECT_EQ(expected(now), clock.at(now));
    }
    EXPECT_EQ(expected(start), clock.at(start));
  }
}

TEST(LogClockTest, PresentTimeIsThatOfTheTimeOfDay) {
  ov::LogClock clock;
  const int64_t end = std::time(nullptr) + 2;
  for (int64_t before = 0; before < end;) {
    before = std::time(nullptr);
    const std::string text(clock.now());
    // A coarse clock may lag behind by a step.
    const int64_t after = std::time(nullptr);
    bool found = false;
    for (int64_t now = before - 1; now <= after; ++now) found = found || text == expected(now);
    ASSERT_TRUE(found) << text;
  }
}

TEST(LogClockTest, TimeThatIsNoneIsEmptyAndForgotten) {
  ov::LogClock clock;
  EXPECT_EQ(expected(1000), clock.at(1000));
  EXPECT_EQ("", clock.at(INT64_MAX));
  EXPECT_EQ(expected(1000), clock.at(1000));
  EXPECT_EQ("", clock.at(INT64_MAX));
}

TEST(LogFoldTest, RepeatsAreCountedUntilAnotherTextComes) {
  ov::LogFold fold;
  EXPECT_FALSE(fold.repeats("LOG a"));
  EXPECT_TRUE(fold.repeats("LOG a"));
  EXPECT_TRUE(fold.repeats("LOG a"));
  EXPECT_EQ(2, fold.count());
  EXPECT_FALSE(fold.repeats("ERR a"));
  EXPECT_EQ(2, fold.count());
  fold.clearCount();
  EXPECT_EQ(0, fold.count());
  EXPECT_FALSE(fold.repeats("LOG a"));
  EXPECT_FALSE(fold.repeats("LOG a "));
  EXPECT_FALSE(fold.repeats("LOG "));
}

}  // namespace
