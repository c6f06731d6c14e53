// The bounded formatters against those of the C library.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "runtime/ov_log.h"
#include "tests/support/runtime/guarded_text.h"

namespace {

// The formats are the test's data.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

template <typename... Arguments>
void compare(const std::string& format, Arguments... arguments) {
  SCOPED_TRACE(format);
  char expected[512];
  const int length = std::snprintf(expected, sizeof expected, format.c_str(), arguments...);
  ASSERT_LE(0, length);
  ASSERT_GT(sizeof expected, static_cast<size_t>(length));
  ASSERT_EQ(length, ov_snprintf(nullptr, 0, format.c_str(), arguments...));
  for (size_t size = 1; size < static_cast<size_t>(length) + 3; ++size) {
    std::vector<char> out(size, '#');
    const bool fits = size > static_cast<size_t>(length);
    ASSERT_EQ(fits ? length : static_cast<int>(size) - 1,
              ov_snprintf(out.data(), size, format.c_str(), arguments...));
    ASSERT_EQ(std::string(expected).substr(0, size - 1), out.data());
  }
}

// Every conversion of these types in every dress, alone and between other text.
template <typename Value>
void compare_all(const std::vector<std::string>& types, const std::vector<std::string>& flags,
                 const std::vector<Value>& values) {
  for (const std::string& type : types) {
    for (const std::string& flag : flags) {
      for (const char* width : {"", "1", "12", ".0", ".3", "9.4", "."}) {
        for (const Value value : values) {
          ASSERT_NO_FATAL_FAILURE(compare("%" + flag + width + type, value));
          ASSERT_NO_FATAL_FAILURE(compare("<%" + flag + width + type + ">%%", value));
        }
      }
      for (const int width : {-7, -1, 0, 5, 11}) {
        ASSERT_NO_FATAL_FAILURE(compare("%" + flag + "*" + type, width, values[0]));
        ASSERT_NO_FATAL_FAILURE(compare("%" + flag + "*.*" + type, width, width / 2, values[0]));
      }
    }
  }
}

const std::vector<std::string> kSignedFlags = {"", "-", "0", "+", " ", "-+", "+0"};
const std::vector<std::string> kUnsignedFlags = {"", "-", "0", "#", "-#", "#0"};

TEST(FormatTest, NumbersAreThoseOfTheLibrary) {
  compare_all<int>({"d", "i"}, kSignedFlags, {0, 7, -7, INT_MAX, INT_MIN});
  compare_all<int>({"hhd", "hd"}, kSignedFlags, {0, -7, 77777, INT_MIN});
  compare_all<unsigned>({"u"}, {"", "-", "0"}, {0, 7, UINT_MAX});
  compare_all<unsigned>({"o", "x", "X", "hhx", "hx"}, kUnsignedFlags, {0, 7, 0xabcdef, UINT_MAX});
  compare_all<long>({"ld", "li"}, kSignedFlags, {0, -7, LONG_MIN, LONG_MAX});
  compare_all<long long>({"lld"}, kSignedFlags, {0, -7, LLONG_MIN, LLONG_MAX});
  compare_all<unsigned long long>({"llx", "llX", "llo"}, kUnsignedFlags, {0, 7, ULLONG_MAX});
  compare_all<unsigned long long>({"llu"}, {"", "-", "0"}, {0, 7, ULLONG_MAX});
  compare_all<intmax_t>({"jd"}, kSignedFlags, {0, INTMAX_MIN});
  compare_all<size_t>({"zu"}, {"", "-", "0"}, {0, SIZE_MAX});
  compare_all<ptrdiff_t>({"td"}, kSignedFlags, {0, PTRDIFF_MIN});
}

TEST(FormatTest, FractionsAreThoseOfTheLibrary) {
  compare_all<double>({"f", "F", "e", "E", "g", "G"}, kSignedFlags,
                      {0, -0.0, 1.5, -1234.5678, 1e20, std::nan(""), HUGE_VAL});
  compare_all<long double>({"Lf", "Lg"}, kSignedFlags, {0, -2.25L});
}

TEST(FormatTest, TextsCharactersAndAddressesAreThoseOfTheLibrary) {
  compare_all<const char*>({"s"}, {"", "-"}, {"", "a", "abcdefgh", "\xc3\xa9\xff"});
  compare_all<int>({"c"}, {"", "-"}, {'a', 255});
  compare("%s", static_cast<const char*>(nullptr));
  compare("<%10s|%-10s>", static_cast<const char*>(nullptr), static_cast<const char*>(nullptr));
  compare_all<void*>({"p"}, {"", "-"}, {reinterpret_cast<void*>(uintptr_t{0x1234}), nullptr});
}

TEST(FormatTest, ManyConversionsTakeTheirArgumentsInOrder) {
  compare("");
  compare("plain");
  compare("%%");
  compare("%s=%d, %5.1f%% of %llu (%c) %.*s %-*d| %zu %x %s", "name", -3, 12.34, 1ULL << 40, 'x', 2,
          "abc", 6, 42, sizeof(int), 255U, "end");
  compare("%.300d", 1 - 1);
  compare("%00000000012d", 5);
}

#pragma GCC diagnostic pop

TEST(FormatTest, WideTextsAreLeftToTheLibrary) {
  char out[32];
  EXPECT_EQ(9, ov_snprintf(out, sizeof out, "%s %ls %d", "ab", L"cd", 123));
  EXPECT_STREQ("ab cd 123", out);
}

// Its last readable byte is the first one that does not fit.
TEST(FormatTest, TextThatIsCutIsReadNoFurther) {
  ov::GuardedText memory(100);
  char out[20];
  const char* const text = memory.bytes(std::string(20, 'x'));
  EXPECT_EQ(19, ov_snprintf(out, sizeof out, "%s", text));
  EXPECT_EQ(std::string(19, 'x'), out);
  EXPECT_EQ(19, ov_snprintf(out, sizeof out, "%s%d", text, 5));
  EXPECT_EQ(19, ov_snprintf(out, sizeof out, "12345%-30s%s", text + 5, "never reached"));
  EXPECT_EQ(20, ov_snprintf(nullptr, 0, "%.20s", text));
}

}  // namespace
