#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "runtime/ov_strings.h"
#include "tests/support/runtime/wildcard_reference.h"

namespace {

using ov::reference::slow_match;

// All texts of up to `length` bytes of `letters`.
std::vector<std::string> all_texts(const std::string& letters, size_t length) {
  std::vector<std::string> texts = {""};
  for (size_t from = 0, round = 0; round < length; ++round) {
    const size_t to = texts.size();
    for (; from < to; ++from) {
      for (const char letter : letters) texts.push_back(texts[from] + letter);
    }
  }
  return texts;
}

TEST(WildcardTest, MatchesByTheRules) {
  EXPECT_EQ(0, ov_str_wildcard_strcmp("a*", "a"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("a**", "a"));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("a**", "ab"));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("\\*", "*"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("\\*", "a"));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("*", ""));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("", ""));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("", "a"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("?", ""));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("*.t?t", "a.b.txt"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("*.t?t", "a.b.tt"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("A", "a"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("a\\", "a\\"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("a\\", "a"));
  EXPECT_EQ(0, ov_str_wildcard_strcmp("a\\\\", "a\\"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp(nullptr, "a"));
  EXPECT_EQ(1, ov_str_wildcard_strcmp("a", nullptr));
}

TEST(WildcardTest, EveryShortPatternAndTextAgreesWithTheSlowMatch) {
  const std::vector<std::string> texts = all_texts("ab*\\", 4);
  for (const std::string& pattern : all_texts("ab*?\\", 5)) {
    for (const std::string& text : texts) {
      const int32_t expected = slow_match(pattern.c_str(), text.c_str()) ? 0 : 1;
      ASSERT_EQ(expected, ov_str_wildcard_strcmp(pattern.c_str(), text.c_str()))
          << "'" << pattern << "' '" << text << "'";
    }
  }
}

TEST(WildcardTest, RandomLongerOnesAgreeWithTheSlowMatch) {
  std::mt19937 random(7);
  const auto make = [&random](const std::string& letters, size_t most) {
    std::string text(random() % (most + 1), 'a');
    for (char& c : text) c = letters[random() % letters.size()];
    return text;
  };
  for (int round = 0; round < 20000; ++round) {
    const std::string pattern = make("aab*?*\\", 9);
    const std::string text = make("aaab*\\", 14);
    const int32_t expected = slow_match(pattern.c_str(), text.c_str()) ? 0 : 1;
    ASSERT_EQ(expected, ov_str_wildcard_strcmp(pattern.c_str(), text.c_str()))
        << "'" << pattern << "' '" << text << "'";
  }
}

TEST(WildcardTest, ManyStarsOverALongTextEnd) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  EXPECT_EQ(1, ov_str_wildcard_strcmp((pattern + "*b").c_str(), std::string(5000, 'a').c_str()));
  EXPECT_EQ(
      0, ov_str_wildcard_strcmp((pattern + "*b").c_str(), (std::string(5000, 'a') + "b").c_str()));
}

TEST(WildcardTest, PresenceSkipsEscapedBytes) {
  EXPECT_EQ(1, ov_str_wildcards_present("a*"));
  EXPECT_EQ(1, ov_str_wildcards_present("?"));
  EXPECT_EQ(1, ov_str_wildcards_present("\\\\*"));
  EXPECT_EQ(1, ov_str_wildcards_present("\\*?"));
  EXPECT_EQ(0, ov_str_wildcards_present("a\\*"));
  EXPECT_EQ(0, ov_str_wildcards_present("a\\"));
  EXPECT_EQ(0, ov_str_wildcards_present("\\?b"));
  EXPECT_EQ(0, ov_str_wildcards_present(""));
  EXPECT_EQ(0, ov_str_wildcards_present(nullptr));
}

}  // namespace
