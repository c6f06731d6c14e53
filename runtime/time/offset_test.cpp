// The offset from UTC in a formatted time.
#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "runtime/ov_time.h"
#include "runtime/time/calendar.h"

namespace {

std::string offset(int64_t seconds) {
  char text[ov::kUtcOffsetRoom];
  ov::format_utc_offset(seconds, text);
  return text;
}

TEST(OffsetTest, OffsetIsThePresentOneEverywhereInTheFormat) {
  const int64_t now = time(nullptr);
  std::tm local;
  int64_t shifted = 0;
  ASSERT_EQ(0, ov_time_localtime(&now, &local));
  ASSERT_EQ(0, ov_time_timegm(&local, &shifted));
  const std::string expected = offset(shifted - now);
  char text[64];
  ASSERT_EQ(0, ov_time_strftime(text, sizeof text, "%z %z", &local));
  EXPECT_EQ(expected + " " + expected, text);
}

TEST(OffsetTest, OffsetHasAMinusUnlessItIsAbove0) {
  EXPECT_EQ("-0000", offset(0));
  EXPECT_EQ("+0100", offset(3600));
  EXPECT_EQ("-0100", offset(-3600));
  EXPECT_EQ("+0530", offset(19800));
  EXPECT_EQ("-0330", offset(-12600));
  EXPECT_EQ("-0030", offset(-1800));
  EXPECT_EQ("+1400", offset(50400));
}

}  // namespace
