#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <random>
#include <string>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/numbers_reference.h"

namespace {

using namespace ov::reference;

Reading read(const std::string& text) {
  Reading reading{0, kUntouched, 0};
  const char* end = nullptr;
  reading.code = ov_str_ahtoll_err(text.c_str(), &reading.value, &end);
  reading.end = static_cast<size_t>(end - text.c_str());
  return reading;
}

TEST(NumbersTest, PrefixTellsTheBase) {
  EXPECT_EQ((Reading{0, 16, 4}), read("0x10"));
  EXPECT_EQ((Reading{0, 0xab, 4}), read("0XaB"));
  EXPECT_EQ((Reading{0, 8, 3}), read("010"));
  EXPECT_EQ((Reading{0, 5, 4}), read("%101"));
  EXPECT_EQ((Reading{0, 12, 2}), read("12"));
  EXPECT_EQ((Reading{0, 0, 1}), read("0"));
  EXPECT_EQ((Reading{0, 0, 1}), read("0a"));
  EXPECT_EQ((Reading{0, -16, 5}), read("-0x10"));
  EXPECT_EQ((Reading{0, -12, 6}), read(" \t\v-12"));
}

TEST(NumbersTest, ALaterByteThatIsNoDigitEndsTheNumber) {
  EXPECT_EQ((Reading{0, 12, 2}), read("12ab"));
  EXPECT_EQ((Reading{0, 1, 2}), read("%12"));
  EXPECT_EQ((Reading{0, 1, 2}), read("018"));
}

TEST(NumbersTest, NoDigitGives22AndLeavesTheValue) {
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 1}), read("09"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 0}), read(""));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 1}), read("-"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 2}), read("0x"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 1}), read("%"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 1}), read("%2"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 0}), read("+1"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 1}), read("- 1"));
  EXPECT_EQ((Reading{OV_EINVAL, kUntouched, 3}), read("   "));
}

TEST(NumbersTest, LimitsOf64BitsAreReadAndOneBeyondGives122AtItsDigit) {
  EXPECT_EQ((Reading{0, INT64_MAX, 19}), read("9223372036854775807"));
  EXPECT_EQ((Reading{0, INT64_MIN, 20}), read("-9223372036854775808"));
  EXPECT_EQ((Reading{OV_ERANGE, kUntouched, 18}), read("9223372036854775808"));
  EXPECT_EQ((Reading{OV_ERANGE, kUntouched, 19}), read("-9223372036854775809"));
  EXPECT_EQ((Reading{0, INT64_MAX, 18}), read("0x7fffffffffffffff"));
  EXPECT_EQ((Reading{0, INT64_MIN, 19}), read("-0x8000000000000000"));
  EXPECT_EQ((Reading{OV_ERANGE, kUntouched, 17}), read("0x8000000000000000"));
  EXPECT_EQ((Reading{OV_ERANGE, kUntouched, 64}), read("%" + std::string(63, '1') + "0"));
}

TEST(NumbersTest, NullArgumentsAreTaken) {
  int64_t value = kUntouched;
  const char* end = "x";
  EXPECT_EQ(OV_EINVAL, ov_str_ahtoll_err(nullptr, &value, &end));
  EXPECT_EQ(nullptr, end);
  EXPECT_EQ(kUntouched, value);
  EXPECT_EQ(0, ov_str_ahtoll_err("5", nullptr, nullptr));
  EXPECT_EQ(0, ov_str_ahtoi_err("5", nullptr, nullptr));
}

TEST(NumbersTest, SmallFormsGive122ForWhatDoesNotFit) {
  int32_t value = 7;
  const char* const text = "4294967296";
  const char* end = nullptr;
  EXPECT_EQ(OV_ERANGE, ov_str_ahtoi_err(text, &value, &end));
  EXPECT_EQ(7, value);
  EXPECT_EQ(text + 10, end);
  EXPECT_EQ(OV_ERANGE, ov_str_ahtoi_err("2147483648", &value, nullptr));
  EXPECT_EQ(OV_ERANGE, ov_str_ahtoi_err("-2147483649", &value, nullptr));
  EXPECT_EQ(0, ov_str_ahtoi_err("2147483647", &value, nullptr));
  EXPECT_EQ(INT32_MAX, value);
  EXPECT_EQ(0, ov_str_ahtoi_err("-2147483648", &value, nullptr));
  EXPECT_EQ(INT32_MIN, value);
  EXPECT_EQ(OV_EINVAL, ov_str_ahtoi_err("x", &value, nullptr));
  uint32_t large = 7;
  EXPECT_EQ(OV_ERANGE, ov_str_ahtou_err("4294967296", &large, nullptr));
  EXPECT_EQ(OV_ERANGE, ov_str_ahtou_err("-1", &large, nullptr));
  EXPECT_EQ(7u, large);
  EXPECT_EQ(0, ov_str_ahtou_err("4294967295", &large, nullptr));
  EXPECT_EQ(UINT32_MAX, large);
}

TEST(NumbersTest, FormsWithoutACodeGive0OnFailure) {
  EXPECT_EQ(16, ov_str_ahtoll("0x10"));
  EXPECT_EQ(0, ov_str_ahtoll("x"));
  EXPECT_EQ(0, ov_str_ahtoll("9223372036854775808"));
  EXPECT_EQ(-5, ov_str_ahtoi("-5"));
  EXPECT_EQ(0, ov_str_ahtoi("2147483648"));
  EXPECT_EQ(0, ov_str_ahtoi(nullptr));
}

TEST(NumbersTest, EveryShortTextAgreesWithTheSlowReader) {
  const std::string letters = " -0179aFxX%g";
  std::vector<std::string> texts = {""};
  for (size_t at = 0; texts[at].size() < 5; ++at) {
    for (const char letter : letters) texts.push_back(texts[at] + letter);
  }
  for (const std::string& text : texts) ASSERT_EQ(slow_read(text), read(text)) << text;
}

TEST(NumbersTest, RandomLongTextsAgreeWithTheSlowReader) {
  std::mt19937 random(11);
  for (int round = 0; round < 100000; ++round) {
    static constexpr const char* kStarts[] = {"", "-", "0x", "-0x", "0", "-0", "%", "-%"};
    static constexpr const char* kLetters[] = {"0123456789", "01", "89abcdefF7", "01234567"};
    std::string text = kStarts[random() % std::size(kStarts)];
    const std::string set = kLetters[random() % std::size(kLetters)];
    const size_t length = random() % 70;
    for (size_t i = 0; i < length; ++i) text += set[random() % set.size()];
    ASSERT_EQ(slow_read(text), read(text)) << text;
  }
}

TEST(NumbersTest, DecimalFormsReadAsTheStandardLibrary) {
  EXPECT_EQ(12, ov_str_atoi(" 12x"));
  EXPECT_EQ(-12, ov_str_atoi("-12"));
  EXPECT_EQ(0, ov_str_atoi("x"));
  EXPECT_EQ(0, ov_str_atoi(nullptr));
  errno = 0;
  EXPECT_EQ(INT32_MAX, ov_str_atoi("2147483648"));
  EXPECT_EQ(ERANGE, errno);
  EXPECT_EQ(INT32_MIN, ov_str_atoi("-99999999999999999999"));
  EXPECT_EQ(10, ov_str_atoi("010"));
  EXPECT_EQ(INT64_MAX, ov_str_atoll("9223372036854775808"));
  EXPECT_EQ(-4294967296, ov_str_atoll("-4294967296"));
  EXPECT_EQ(0, ov_str_atoll(nullptr));
  EXPECT_EQ(1.5, ov_str_atof("1.5x"));
  EXPECT_EQ(0.0, ov_str_atof(nullptr));
}

TEST(NumbersTest, DecimalTextsOfTheLimits) {
  char text[400];
  EXPECT_STREQ("-2147483648", ov_str_itoa(INT32_MIN, text, sizeof text));
  EXPECT_EQ(text, ov_str_itoa(0, text, sizeof text));
  EXPECT_STREQ("0", text);
  EXPECT_STREQ("4294967295", ov_str_uitoa(UINT32_MAX, text, sizeof text));
  EXPECT_STREQ("-9223372036854775808", ov_str_lltoa(INT64_MIN, text, sizeof text));
  EXPECT_STREQ("18446744073709551615", ov_str_ulltoa(UINT64_MAX, text, sizeof text));
  EXPECT_STREQ("-1.500000", ov_str_ftoa(-1.5, text, sizeof text));
  EXPECT_EQ(316u, std::strlen(ov_str_ftoa(1e308, text, sizeof text)));
}

TEST(NumbersTest, TextsAreCutAtTheBuffer) {
  char text[] = "######";
  EXPECT_STREQ("123", ov_str_itoa(12345, text, 4));
  EXPECT_EQ('#', text[4]);
  EXPECT_STREQ("123", ov_str_lltoa(12345, text, 4));
  EXPECT_STREQ("123", ov_str_uitoa(12345, text, 4));
  EXPECT_STREQ("123", ov_str_ulltoa(12345, text, 4));
  EXPECT_STREQ("1.0", ov_str_ftoa(1.0, text, 4));
  EXPECT_STREQ("1.0", ov_str_itoa(5, text, 0));
  EXPECT_EQ(nullptr, ov_str_itoa(5, nullptr, 4));
}

TEST(NumbersTest, NetworkOrderPutsTheHighByteFirst) {
  const uint64_t network = ov_htonll(0x0102030405060708);
  uint8_t bytes[8];
  std::memcpy(bytes, &network, sizeof bytes);
  for (uint8_t i = 0; i < 8; ++i) EXPECT_EQ(i + 1, bytes[i]);
}

}  // namespace
