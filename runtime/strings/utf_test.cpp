#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/guarded_text.h"
#include "tests/support/runtime/utf_reference.h"

namespace {

using namespace ov::reference;

// The conversion in its two steps; nothing for ill-formed text.
std::optional<Units> to_utf16(const std::string& text, int32_t flags = 0) {
  size_t bytes = 0;
  const ov_rc measured = ov_utf8_to_utf16(text.c_str(), flags, nullptr, &bytes);
  if (measured == OV_EINVAL) {
    EXPECT_EQ(0u, bytes);
    return std::nullopt;
  }
  EXPECT_EQ(OV_ERANGE, measured);
  Units units(bytes / 2, 0xffff);
  const size_t need = bytes;
  EXPECT_EQ(0, ov_utf8_to_utf16(text.c_str(), flags, units.data(), &bytes));
  EXPECT_EQ(need, bytes);
  EXPECT_EQ(0, units.back());
  units.pop_back();
  return units;
}

std::optional<std::string> to_utf8(Units units, int32_t flags = 0) {
  units.push_back(0);
  size_t bytes = 0;
  const ov_rc measured = ov_utf16_to_utf8(units.data(), flags, nullptr, &bytes);
  if (measured == OV_EINVAL) return std::nullopt;
  EXPECT_EQ(OV_ERANGE, measured);
  std::string text(bytes, '#');
  EXPECT_EQ(0, ov_utf16_to_utf8(units.data(), flags, text.data(), &bytes));
  EXPECT_EQ(text.size(), bytes);
  EXPECT_EQ(0, text.back());
  text.pop_back();
  return text;
}

TEST(UtfTest, EveryCodePointGoesToUtf16AndBack) {
  for (uint32_t c = 1; c <= 0x10ffff; ++c) {
    const std::string text = encode(c);
    Units expected = {static_cast<uint16_t>(c)};
    if (c >= 0x10000) {
      expected = {static_cast<uint16_t>(0xd800 + (c - 0x10000) / 1024),
                  static_cast<uint16_t>(0xdc00 + (c - 0x10000) % 1024)};
    }
    if (is_surrogate(c)) {
      ASSERT_FALSE(to_utf16(text)) << c;
      ASSERT_FALSE(to_utf8(expected)) << c;
      ASSERT_EQ(expected, to_utf16(text, 1)) << c;
      ASSERT_EQ(text, to_utf8(expected, 1)) << c;
      continue;
    }
    ASSERT_EQ(expected, to_utf16(text)) << c;
    ASSERT_EQ(text, to_utf8(expected)) << c;
    ASSERT_EQ(1, ov_utf8_is_valid(text.c_str(), text.size())) << c;
  }
}

TEST(UtfTest, LoneSurrogatesAreErrorsWhenStrict) {
  EXPECT_FALSE(to_utf8({'a', 0xd800}));
  EXPECT_FALSE(to_utf8({0xd800, 'a'}));
  EXPECT_FALSE(to_utf8({0xdc00, 0xd800}));
  EXPECT_FALSE(to_utf8({0xd800, 0xd800, 0xdc00}));
  EXPECT_EQ("\xed\xa0\x80\xf0\x90\x80\x80", to_utf8({0xd800, 0xd800, 0xdc00}, 1));
  EXPECT_EQ("\xed\xb0\x80\xed\xa0\x80", to_utf8({0xdc00, 0xd800}, 1));
  EXPECT_EQ((Units{0xd800, 0xdc00}), to_utf16("\xed\xa0\x80\xed\xb0\x80", 1));
}

TEST(UtfTest, SmallBufferGives122AndTheNeed) {
  uint16_t units[4] = {9, 9, 9, 9};
  size_t bytes = 5;
  EXPECT_EQ(OV_ERANGE, ov_utf8_to_utf16("ab", 0, units, &bytes));
  EXPECT_EQ(6u, bytes);
  EXPECT_EQ(9, units[0]);
  bytes = sizeof units;
  EXPECT_EQ(0, ov_utf8_to_utf16("ab", 0, units, &bytes));
  EXPECT_EQ(6u, bytes);
  char text[4] = "###";
  bytes = 2;
  EXPECT_EQ(OV_ERANGE, ov_utf16_to_utf8(units, 0, text, &bytes));
  EXPECT_EQ(3u, bytes);
  EXPECT_STREQ("###", text);
  EXPECT_EQ(0, ov_utf16_to_utf8(units, 0, text, &bytes));
  EXPECT_STREQ("ab", text);
}

TEST(UtfTest, FailureLeavesTheBufferAsItWas) {
  for (const size_t length : {size_t{3}, size_t{40}}) {
    for (const char* tail : {"\xc3", "\xed\xa0\x80", "\xc3\xa9"}) {
      const std::string text = std::string(length, 'a') + tail;
      Units units(length + 1, 0x5555);
      size_t bytes = units.size() * 2;
      EXPECT_NE(0, ov_utf8_to_utf16(text.c_str(), 0, units.data(), &bytes));
      EXPECT_EQ(Units(length + 1, 0x5555), units);
    }
    Units units(length, 'a');
    for (const uint16_t last : {uint16_t{0xd800}, uint16_t{0xe9}}) {
      Units source = units;
      source.insert(source.end(), {last, 0});
      std::string out(length + 2, '#');
      size_t bytes = out.size();
      EXPECT_NE(0, ov_utf16_to_utf8(source.data(), 0, out.data(), &bytes));
      EXPECT_EQ(std::string(length + 2, '#'), out);
    }
  }
}

TEST(UtfTest, NullArgumentsGive22) {
  const uint16_t source[] = {'a', 0};
  uint16_t units[4];
  char text[4];
  size_t bytes = 4;
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_utf16(nullptr, 0, units, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_utf16("a", 0, units, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_utf16("a", 0, nullptr, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_utf16_to_utf8(nullptr, 0, text, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_utf16_to_utf8(source, 0, text, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_utf16_to_utf8(source, 0, nullptr, &bytes));
  EXPECT_EQ(4u, bytes);
  EXPECT_EQ(0u, ov_utf8_len(nullptr));
  EXPECT_EQ(0u, ov_utf16_len(nullptr));
  EXPECT_EQ(2u, ov_utf8_len("\xc3\xa9"));
  EXPECT_EQ(1u, ov_utf16_len(source));
}

TEST(UtfTest, WideTextIsThePlatforms) {
  wchar_t wide[8];
  size_t bytes = sizeof wide;
  ASSERT_EQ(0, ov_utf8_to_wchar("a\xc3\xa9\xf0\x9f\x98\x80", wide, &bytes));
  const std::wstring expected = L"a\u00e9\U0001F600";
  EXPECT_EQ(expected, wide);
  EXPECT_EQ((expected.size() + 1) * sizeof(wchar_t), bytes);
  char text[16];
  bytes = sizeof text;
  EXPECT_EQ(0, ov_wchar_to_utf8(wide, text, &bytes));
  EXPECT_STREQ("a\xc3\xa9\xf0\x9f\x98\x80", text);
  EXPECT_EQ(8u, bytes);
  const wchar_t lone[] = {0xd800, 0};
  EXPECT_EQ(OV_EINVAL, ov_wchar_to_utf8(lone, text, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_wchar("\xc0\x80", wide, &bytes));
}

TEST(UtfTest, IllFormedBytesAreRefused) {
  for (const char* text : {"\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xff", "\x80", "\xc3",
                           "\xe2\x82", "\xf0\x9f\x98", "\xf8\x88\x80\x80\x80",
                           "\xc3"
                           "a"}) {
    EXPECT_EQ(0, ov_utf8_is_valid(text, std::strlen(text))) << text;
    EXPECT_FALSE(to_utf16(text)) << text;
  }
  EXPECT_EQ(0, ov_utf8_is_valid(nullptr, 5));
  EXPECT_EQ(1, ov_utf8_is_valid("", 0));
  EXPECT_EQ(1, ov_utf8_is_valid("\xc3\xa9", 0));
  EXPECT_EQ(0, ov_utf8_is_valid("\xc3\xa9", 1));
  EXPECT_EQ(1, ov_utf8_is_valid("\xc3\xa9", SIZE_MAX));
}

// All that the UTF-8 functions tell of one text agrees with the table of sequences.
void compare_with_table(const std::string& text) {
  const size_t length = slow_well_formed_length(text);
  const std::vector<char> exact(text.begin(), text.end());
  const char none = 0;
  const char* const bytes = text.empty() ? &none : exact.data();
  ASSERT_EQ(length, ov_utf8_well_formed_length(bytes, text.size()));
  ASSERT_EQ(length == text.size() ? 1 : 0, ov_utf8_is_valid(bytes, text.size()));
  const bool first_good = text.empty() || slow_sequence(text, 0) > 0;
  ASSERT_EQ(first_good ? nullptr : bytes + slow_fault(text, 0),
            ov_utf8c_find_invalid_byte(bytes, text.size()));
  ASSERT_EQ(slow_to_utf16(text), to_utf16(text));
  std::string cut = text;
  size_t cut_length = cut.size();
  const bool cuts = ov_utf8_trim_trailing_partial(cut.data(), &cut_length) == 0;
  ASSERT_EQ(slow_trim(text), cuts ? std::optional(cut.substr(0, cut_length)) : std::nullopt);
}

TEST(UtfTest, EverySequenceOfEdgeBytesAgreesWithTheTable) {
  const uint8_t edges[] = {0x01, 0x7f, 0x80, 0x8f, 0x90, 0x9f, 0xa0, 0xbf, 0xc0,
                           0xc1, 0xc2, 0xdf, 0xe0, 0xe1, 0xec, 0xed, 0xee, 0xef,
                           0xf0, 0xf1, 0xf3, 0xf4, 0xf5, 0xf7, 0xf8, 0xfc, 0xff};
  std::vector<std::string> texts = {""};
  for (size_t at = 0; texts[at].size() < 3; ++at) {
    for (const uint8_t edge : edges) texts.push_back(texts[at] + static_cast<char>(edge));
  }
  for (const std::string& text : texts) {
    ASSERT_NO_FATAL_FAILURE(compare_with_table(text)) << testing::PrintToString(text);
  }
  for (const char first : {'\xf0', '\xf1', '\xf4'}) {
    for (const std::string& rest : texts) {
      ASSERT_NO_FATAL_FAILURE(compare_with_table(first + rest)) << testing::PrintToString(rest);
    }
  }
}

TEST(UtfTest, EveryTextOfTwoBytesAgreesWithTheTable) {
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second) {
      const std::string text = {static_cast<char>(first), static_cast<char>(second)};
      ASSERT_NO_FATAL_FAILURE(compare_with_table(text)) << first << " " << second;
    }
  }
}

TEST(UtfTest, RandomTextsAgreeWithTheTable) {
  std::mt19937 random(13);
  for (int round = 0; round < 50000; ++round) {
    const std::string text = random_text(random);
    ASSERT_NO_FATAL_FAILURE(compare_with_table(text)) << testing::PrintToString(text);
  }
}

TEST(UtfTest, NothingIsReadBehindTheEndOfReadableMemory) {
  ov::GuardedText memory(4096);
  for (size_t length = 0; length < 100; ++length) {
    for (const char* tail : {"", "\xc3\xa9", "\xf0\x9f\x98\x80"}) {
      const std::string text = std::string(length, 'a') + tail;
      const char* at = memory.bytes(text);
      ASSERT_EQ(1, ov_utf8_is_valid(at, text.size()));
      ASSERT_EQ(text.size(), ov_utf8_well_formed_length(at, text.size()));
      at = memory.terminated(text);
      ASSERT_EQ(1, ov_utf8_is_valid(at, SIZE_MAX));
      ASSERT_EQ(text.size(), ov_utf8_well_formed_length(at, SIZE_MAX));
    }
    // Sequences that the end cuts off.
    for (const char* tail : {"\xc3", "\xe2\x82", "\xf0\x9f", "\xf0\x9f\x98"}) {
      const std::string text = std::string(length, 'a') + tail;
      ASSERT_EQ(0, ov_utf8_is_valid(memory.bytes(text), text.size()));
      ASSERT_EQ(length, ov_utf8_well_formed_length(memory.bytes(text), text.size()));
      ASSERT_EQ(0, ov_utf8_is_valid(memory.terminated(text), SIZE_MAX));
      ASSERT_EQ(length, ov_utf8_well_formed_length(memory.terminated(text), SIZE_MAX));
    }
  }
}

// Texts of several blocks, of which each sequence may be in two, with a fault or none.
TEST(UtfTest, LongTextsAgreeWithTheTableAndComeBack) {
  std::mt19937 random(31);
  int good = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    const uint32_t limit = std::vector<uint32_t>{0x7f, 0x7ff, 0xffff, 0x10ffff}[random() % 4];
    while (text.size() < 80) {
      const uint32_t c = 1 + random() % limit;
      if (!is_surrogate(c)) text += encode(random() % 3 == 0 ? 'a' : c);
    }
    if (round % 2 == 0) text[random() % text.size()] = static_cast<char>(1 + random() % 255);
    const bool expected = slow_well_formed_length(text) == text.size();
    good += expected ? 1 : 0;
    const std::optional<Units> units = to_utf16(text, 0);
    ASSERT_EQ(expected, units.has_value()) << round;
    if (!expected) continue;
    ASSERT_EQ(units, to_utf16(text, 1));
    ASSERT_EQ(text, to_utf8(*units, 0));
  }
  EXPECT_LT(10000, good);
  EXPECT_GT(20000, good);
}

TEST(UtfTest, SurrogatesInAnyPlaceOfALongTextGoThroughOnlyIfAllowed) {
  for (size_t before = 0; before < 40; ++before) {
    for (const uint32_t surrogate : {0xd800u, 0xdbffu, 0xdc00u, 0xdfffu}) {
      const std::string text = std::string(before, 'a') + encode(surrogate) + "\xc3\xa9";
      EXPECT_EQ(std::nullopt, to_utf16(text, 0));
      Units expected(before, 'a');
      expected.push_back(static_cast<uint16_t>(surrogate));
      expected.push_back(0xe9);
      EXPECT_EQ(expected, to_utf16(text, 1));
      EXPECT_EQ(std::nullopt, to_utf8(expected, 0));
      EXPECT_EQ(text, to_utf8(expected, 1));
    }
  }
}

TEST(UtfTest, RandomUnitsAgreeWithPairingThemByHand) {
  std::mt19937 random(17);
  for (int round = 0; round < 50000; ++round) {
    Units units(random() % 8);
    for (uint16_t& unit : units) {
      static constexpr uint16_t kBases[] = {0x20, 0x7f0, 0xd7f0, 0xd800, 0xdbf0, 0xdc00, 0xdff0};
      unit = static_cast<uint16_t>(kBases[random() % std::size(kBases)] + random() % 32);
    }
    const FromUnits expected = slow_to_utf8(units);
    ASSERT_EQ(expected.text, to_utf8(units, 1));
    ASSERT_EQ(expected.loneSurrogate ? std::nullopt : std::optional(expected.text),
              to_utf8(units, 0));
  }
}

TEST(UtfTest, LongRandomTextsOfMixedScriptsAgreeWithPairingThemByHand) {
  // Runs of one kind and single units, pairs mostly whole, so that each meets every place of a
  // block.
  static constexpr uint16_t kBases[] = {0x20, 0x60, 0x7f0, 0x7f8, 0x4e00, 0xd800, 0xdc00, 0xffe0};
  std::mt19937 random(29);
  for (int round = 0; round < 20000; ++round) {
    Units units;
    const size_t length = random() % 80;
    while (units.size() < length) {
      const uint16_t base = kBases[random() % std::size(kBases)];
      for (size_t run = random() % 12 + 1; run > 0; --run) {
        units.push_back(static_cast<uint16_t>(base + random() % 16));
        const bool isPaired = base == 0xd800 && random() % 50 != 0;
        if (isPaired) units.push_back(static_cast<uint16_t>(0xdc00 + random() % 0x400));
      }
    }
    const FromUnits expected = slow_to_utf8(units);
    ASSERT_EQ(expected.text, to_utf8(units, 1));
    ASSERT_EQ(expected.loneSurrogate ? std::nullopt : std::optional(expected.text),
              to_utf8(units, 0));
  }
}

TEST(UtfTest, WideFormsRefuseMissingArguments) {
  wchar_t wide[4];
  char text[4];
  size_t bytes = sizeof text;
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_wchar(nullptr, wide, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_wchar("a", wide, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_utf8_to_wchar("a", nullptr, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_wchar_to_utf8(nullptr, text, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_wchar_to_utf8(L"a", text, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_wchar_to_utf8(L"a", nullptr, &bytes));
  bytes = 1;
  EXPECT_EQ(OV_ERANGE, ov_wchar_to_utf8(L"a", text, &bytes));
  EXPECT_EQ(2u, bytes);
  EXPECT_EQ(OV_ERANGE, ov_utf8_to_wchar("a", wide, &bytes));
  EXPECT_EQ(2 * sizeof(wchar_t), bytes);
}

TEST(UtfTest, SizeTellsTheBytesUsed) {
  uint16_t units[16];
  size_t bytes = sizeof units;
  EXPECT_EQ(0, ov_utf8_to_utf16("\xf0\x9f\x98\x80"
                                "a",
                                0, units, &bytes));
  EXPECT_EQ(8u, bytes);
  char text[16];
  bytes = sizeof text;
  EXPECT_EQ(0, ov_utf16_to_utf8(units, 0, text, &bytes));
  EXPECT_EQ(6u, bytes);
  bytes = 7;
  EXPECT_EQ(OV_ERANGE, ov_utf8_to_utf16("\xf0\x9f\x98\x80"
                                        "a",
                                        0, units, &bytes));
  EXPECT_EQ(8u, bytes);
}

TEST(UtfTest, LengthOfNullIs0) {
  EXPECT_EQ(0u, ov_utf8_well_formed_length(nullptr, 5));
}

}  // namespace
