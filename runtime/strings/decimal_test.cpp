// The reader of plain decimal digits.
#include "runtime/strings/decimal.h"

#include <gtest/gtest.h>

namespace {

TEST(DecimalTest, ReadsTheDigitsAtTheStart) {
  EXPECT_EQ(20u, ov::read_decimal("20:x").value);
  EXPECT_EQ(2u, ov::read_decimal("20:x").digits);
  EXPECT_EQ(7u, ov::read_decimal("007").value);
  EXPECT_EQ(3u, ov::read_decimal("007").digits);
}

TEST(DecimalTest, NoDigitIsNoNumber) {
  for (const char* text : {"", "-1", "+1", " 1", "x", "/", ":", "\xb2"}) {
    EXPECT_EQ(0u, ov::read_decimal(text).digits) << text;
    EXPECT_EQ(0u, ov::read_decimal(text).value) << text;
  }
}

TEST(DecimalTest, NumberBeyondTheGreatestIsTheGreatest) {
  EXPECT_EQ(UINT64_MAX - 1, ov::read_decimal("18446744073709551614").value);
  EXPECT_EQ(UINT64_MAX, ov::read_decimal("18446744073709551615").value);
  EXPECT_EQ(UINT64_MAX, ov::read_decimal("18446744073709551616").value);
  EXPECT_EQ(UINT64_MAX, ov::read_decimal("18446744073709551620").value);
  EXPECT_EQ(UINT64_MAX, ov::read_decimal("99999999999999999999999990").value);
  EXPECT_EQ(26u, ov::read_decimal("99999999999999999999999990").digits);
}

}  // namespace
