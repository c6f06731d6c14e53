// Where UTF-8 breaks, and the two ways of mending it.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/utf_reference.h"

namespace {

using namespace ov::reference;

TEST(Utf8FaultTest, PointsAtTheFirstByteThatBreaksTheSequence) {
  const auto fault = [](const std::string& text) -> int64_t {
    const char* at = ov_utf8c_find_invalid_byte(text.data(), text.size());
    return at != nullptr ? at - text.data() : -1;
  };
  EXPECT_EQ(-1, fault("a\xff"));
  EXPECT_EQ(-1, fault("\xc3\xa9\xff"));
  EXPECT_EQ(-1, fault(""));
  EXPECT_EQ(0, fault("\xff"));
  EXPECT_EQ(0, fault("\x80"));
  EXPECT_EQ(0, fault("\xc0\x80"));
  EXPECT_EQ(1, fault("\xc3"
                     "a"));
  EXPECT_EQ(1, fault("\xed\xa0\x80"));
  EXPECT_EQ(2, fault("\xe2\x82"
                     "a"));
  EXPECT_EQ(3, fault("\xf0\x9f\x98"
                     "a"));
  EXPECT_EQ(2, fault("\xe2\x82"));
  EXPECT_EQ(nullptr, ov_utf8c_find_invalid_byte(nullptr, 3));
}

// The text after the cut, or the code as text.
std::string trimmed(std::string text, size_t length = SIZE_MAX) {
  size_t size = length == SIZE_MAX ? text.size() : length;
  const ov_rc result = ov_utf8_trim_trailing_partial(text.data(), &size);
  if (result != 0) return "error " + std::to_string(result);
  EXPECT_EQ(0, text.c_str()[size]);
  return text.substr(0, size);
}

TEST(Utf8TrimTest, CutsOnlyAnUnfinishedLastSequence) {
  EXPECT_EQ("", trimmed(""));
  EXPECT_EQ("ab", trimmed("ab"));
  EXPECT_EQ("a", trimmed("a\xc3"));
  EXPECT_EQ("a\xc3\xa9", trimmed("a\xc3\xa9"));
  EXPECT_EQ("a", trimmed("a\xe2\x82"));
  EXPECT_EQ("a\xe2\x82\xac", trimmed("a\xe2\x82\xac"));
  EXPECT_EQ("a", trimmed("a\xf0\x9f\x98"));
  EXPECT_EQ("", trimmed("\xf0\x9f\x98"));
  EXPECT_EQ("", trimmed("\xff"));
  EXPECT_EQ("a", trimmed("a\xc3\xa9\x80"));
  EXPECT_EQ("\xf8\x88\x80\x80\x80", trimmed("\xf8\x88\x80\x80\x80"));
  EXPECT_EQ("error 22", trimmed("a\x80"));
  EXPECT_EQ("error 22", trimmed("\x80\x80"));
}

TEST(Utf8TrimTest, LengthMayBeGivenOrMeasured) {
  EXPECT_EQ("a", trimmed("a\xc3\xa9", 2));
  char text[] = "ab\xe2\x82";
  EXPECT_EQ(0, ov_utf8_trim_trailing_partial(text, nullptr));
  EXPECT_STREQ("ab", text);
  size_t length = 2;
  EXPECT_EQ(OV_EINVAL, ov_utf8_trim_trailing_partial(nullptr, &length));
}

struct Replaced {
  ov_rc code;
  std::string text;
  bool operator==(const Replaced&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Replaced& replaced) {
  return out << "{" << replaced.code << ", " << testing::PrintToString(replaced.text) << "}";
}

Replaced replaced(const std::string& text, size_t size = 64, const char* with = nullptr) {
  std::vector<char> output(size, '#');
  Replaced result{0, ""};
  const size_t length = with != nullptr ? std::strlen(with) : 0;
  result.code = ov_utf8_replace_invalid_sequence(output.data(), text.c_str(), &size, with, length);
  EXPECT_EQ(0, output[size]);
  result.text.assign(output.data(), size);
  return result;
}

TEST(Utf8ReplaceTest, ReplacesUpToAndWithTheByteAtFault) {
  EXPECT_EQ((Replaced{0, "a\xc3\xa9"}), replaced("a\xc3\xa9"));
  EXPECT_EQ((Replaced{OV_EILLUTFSTR,
                      "a\xef\xbf\xbd"
                      "b"}),
            replaced("a\xff"
                     "b"));
  EXPECT_EQ((Replaced{OV_EILLUTFSTR, "\xef\xbf\xbd"}), replaced("\xe2\x82"));
  EXPECT_EQ((Replaced{OV_EILLUTFSTR,
                      "\xef\xbf\xbd"
                      "b"}),
            replaced("\xc3"
                     "ab"));
  EXPECT_EQ((Replaced{OV_EILLUTFSTR, "??"}), replaced("\xc0\x80", 64, "?"));
  EXPECT_EQ((Replaced{OV_EILLUTFSTR, "ab"}), replaced("a\xff"
                                                      "b",
                                                      64, ""));
  EXPECT_EQ((Replaced{0, ""}), replaced(""));
}

TEST(Utf8ReplaceTest, PieceThatDoesNotFitEndsTheOutput) {
  EXPECT_EQ((Replaced{OV_EBUFFER, "ab"}), replaced("abc", 3));
  EXPECT_EQ((Replaced{0, "abc"}), replaced("abc", 4));
  EXPECT_EQ((Replaced{OV_EBUFFER, "a"}), replaced("a\xc3\xa9", 3));
  EXPECT_EQ((Replaced{OV_EBUFFER, ""}), replaced("\xff", 3));
  EXPECT_EQ((Replaced{OV_EBUFFER, "?"}), replaced("\xff"
                                                  "ab",
                                                  2, "?"));
  EXPECT_EQ((Replaced{OV_EBUFFER, ""}), replaced("a", 1));
}

TEST(Utf8ReplaceTest, MissingArgumentsGive22) {
  char text[4];
  size_t size = 0;
  EXPECT_EQ(OV_EINVAL, ov_utf8_replace_invalid_sequence(text, "a", &size, nullptr, 0));
  EXPECT_EQ(OV_EINVAL, ov_utf8_replace_invalid_sequence(text, "a", nullptr, nullptr, 0));
  size = sizeof text;
  EXPECT_EQ(OV_EINVAL, ov_utf8_replace_invalid_sequence(nullptr, "a", &size, nullptr, 0));
  EXPECT_EQ(OV_EINVAL, ov_utf8_replace_invalid_sequence(text, nullptr, &size, nullptr, 0));
}

TEST(Utf8ReplaceTest, RandomTextsComeOutWellFormed) {
  std::mt19937 random(19);
  for (int round = 0; round < 50000; ++round) {
    const std::string text = random_text(random);
    const Replaced result = replaced(text, text.size() * 3 + 1);
    const bool good = slow_well_formed_length(text) == text.size();
    ASSERT_EQ(good ? 0 : OV_EILLUTFSTR, result.code);
    ASSERT_EQ(result.text.size(), slow_well_formed_length(result.text));
    ASSERT_EQ(slow_replace(text, "\xef\xbf\xbd"), result.text);
  }
}

}  // namespace
