#include "runtime/log_line.h"

#include <gtest/gtest.h>

#include <string>

namespace {

OV_PRINTF(3, 4) bool compose(ov::LogLine& line, int32_t level, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool result = line.compose(level, format, arguments);
  va_end(arguments);
  return result;
}

std::tm moment() {
  std::tm time = {};
  time.tm_year = 126;
  time.tm_mon = 2;
  time.tm_mday = 9;
  time.tm_hour = 17;
  time.tm_min = 2;
  time.tm_sec = 11;
  return time;
}

TEST(LogLineTest, StampStandsDirectlyInFrontOfTheText) {
  ov::LogLine line;
  ASSERT_TRUE(compose(line, OV_LEVEL_LOG, "text %d", 5));
  EXPECT_EQ("LOG text 5", line.text());
  EXPECT_EQ("LOG text 5\r\n", line.text_and_end());
  ASSERT_TRUE(line.stamp(0, moment(), 0x1a4c, 0xf10));
  EXPECT_EQ("2026-03-09 17:02:11 [1a4c-00000f10] LOG text 5\r\n", line.whole());
}

TEST(LogLineTest, NoteOfRepeatsOpensTheLineAndItsThreadIsNotPadded) {
  ov::LogLine line;
  ASSERT_TRUE(compose(line, OV_LEVEL_ERR, "x"));
  ASSERT_TRUE(line.stamp(2, moment(), 0x1a4c, 0xf10));
  EXPECT_EQ("Last message repeated 2 times\r\n2026-03-09 17:02:11 [1a4c-f10] ERR x\r\n",
            line.whole());
  ASSERT_TRUE(line.stamp(INT32_MAX, moment(), UINT32_MAX, UINT32_MAX));
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
    EXPECT_EQ("DBG " + std::string(4089, 'x') + "\r\n", line.text_and_end());
  }
  ASSERT_TRUE(compose(line, OV_LEVEL_DBG, "%s", std::string(4088, 'x').c_str()));
  EXPECT_EQ(4092u, line.text().size());
}

TEST(LogLineTest, TextThatCannotBeFormattedIsTold) {
  ov::LogLine line;
  const auto without_format_check = &compose;
  EXPECT_FALSE(without_format_check(line, OV_LEVEL_LOG, nullptr));
}

TEST(LogFoldTest, RepeatsAreCountedUntilAnotherTextComes) {
  ov::LogFold fold;
  EXPECT_FALSE(fold.repeats("LOG a"));
  EXPECT_TRUE(fold.repeats("LOG a"));
  EXPECT_TRUE(fold.repeats("LOG a"));
  EXPECT_EQ(2, fold.count());
  EXPECT_FALSE(fold.repeats("ERR a"));
  EXPECT_EQ(2, fold.count());
  fold.clear_count();
  EXPECT_EQ(0, fold.count());
  EXPECT_FALSE(fold.repeats("LOG a"));
  EXPECT_FALSE(fold.repeats("LOG a "));
  EXPECT_FALSE(fold.repeats("LOG "));
}

}  // namespace
