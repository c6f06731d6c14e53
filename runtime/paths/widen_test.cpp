// The long form of a path, and prefixes in buffers of any size.
#include "runtime/paths/internal.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

using ov::reference::forEachText;

struct Case {
  const char* in;
  const char* out;
};

// The long form before the conversion, or the path itself, or the error's number.
std::string widened(const std::string& path) {
  char buffer[ov::kWidenedSize];
  const char* text = nullptr;
  const ov_rc error = ov::widened_text(path.c_str(), buffer, &text);
  if (error != 0) return std::to_string(error);
  return text == nullptr ? path : text;
}

TEST(WidenTest, WidenedTexts) {
  constexpr Case kCases[] = {
      {"/a/b", "/a/b"},
      {"C:/a./b..", "C:/a./b.."},
      {"C:/aaaa./b", "C:/aaaa./b"},  // 10 bytes
      {"C:/aaaa./bbbb..", R"(\\?\C:\aaaa\bbbb)"},
      {"C:/aaaaa/./bbb", R"(\\?\C:\aaaaa\\bbb)"},
      {"C:/aaaaa.b..c/.d/..e", R"(\\?\C:\aaaaa.b..c\.d\..e)"},
      {"//host/share/a./b", R"(\\?\UNC\host\share\a\b)"},
      {"relative/path./x", "relative/path./x"},
      {"/aaaaaaaaaaaaa", R"(\\?\\aaaaaaaaaaaaa)"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.out, widened(c.in)) << c.in;
  EXPECT_EQ(529U, widened("C:/" + std::string(522, 'a')).size());
  EXPECT_EQ("28677", widened("C:/" + std::string(523, 'a')));
}

// Around the length at which the rewriting begins, and with each root.
TEST(WidenTest, WideningEqualsTheReference) {
  for (const char* start :
       {"", "/", "C:/", "C:", "//h/s/", "//host/share", "C:/folder", "rel/folder", "ab://hosts"}) {
    forEachText("a./\\:", 5, [start](const std::string& text) {
      const std::string path = start + text;
      ASSERT_EQ(ov::reference::widened(path).value_or("28677"), widened(path)) << path;
    });
  }
}

TEST(WidenTest, WideningOfRandomTextsEqualsTheReference) {
  std::mt19937 random(31);
  const std::vector<std::string> pieces = {"name", ".",   "..", "/",       "//",
                                           "\\",   "x.y", " ",  "\xC3\xA9"};
  for (int i = 0; i < 50000; ++i) {
    std::string path = i % 2 == 0 ? "C:/" : "//h/";
    for (size_t count = random() % 300; count > 0; --count)
      path += pieces[random() % pieces.size()];
    ASSERT_EQ(ov::reference::widened(path).value_or("28677"), widened(path)) << path;
  }
}

TEST(WidenTest, PrefixSizesAreHonoured) {
  const char* rest = nullptr;
  char prefix[7];
  EXPECT_EQ(0, ov::unc_parts("//h/s/d", prefix, 7, &rest));
  EXPECT_STREQ("//h/s/", prefix);
  EXPECT_EQ(-1, ov::unc_parts("//h/s/d", prefix, 6, &rest));
  EXPECT_EQ(-1, ov::unc_parts("//h/s/d", prefix, 0, &rest));
  EXPECT_EQ(0, ov::extract_prefix("C:x", prefix, 4, &rest));
  EXPECT_EQ(-1, ov::extract_prefix("C:x", prefix, 3, &rest));
  EXPECT_EQ(-1, ov::extract_prefix("/x", prefix, 1, &rest));
  EXPECT_EQ(0, ov::extract_prefix("x", prefix, 1, &rest));
  EXPECT_EQ(-1, ov::extract_prefix("x", prefix, 0, &rest));
}

// The wide text that is told, or none with its code.
std::string widenedAndBack(const std::string& path, size_t units, ov_rc* code) {
  std::vector<wchar_t> wide(units);
  size_t bytes = units * sizeof(wchar_t);
  *code = ov_path_widen_path(path.c_str(), wide.data(), &bytes);
  if (*code != 0) return "";
  EXPECT_EQ((wcslen(wide.data()) + 1) * sizeof(wchar_t), bytes);
  char text[2048];
  size_t size = sizeof text;
  EXPECT_EQ(0, ov_wchar_to_utf8(wide.data(), text, &size));
  return text;
}

TEST(WidenTest, WidenedTextIsConvertedWhole) {
  ov_rc code = -1;
  EXPECT_EQ("/a/b", widenedAndBack("/a/b", 520, &code));
  EXPECT_EQ("C:/a./b..", widenedAndBack("C:/a./b..", 520, &code));
  EXPECT_EQ(R"(\\?\C:\aaaa\bbbb)", widenedAndBack("C:/aaaa./bbbb..", 17, &code));
  EXPECT_EQ("", widenedAndBack("C:/aaaa./bbbb..", 16, &code));
  EXPECT_EQ(OV_ERANGE, code);
  EXPECT_EQ("", widenedAndBack("C:/folder/\xC0\x80", 520, &code));
  EXPECT_EQ(OV_EINVAL, code);
  EXPECT_EQ("", widenedAndBack("C:/" + std::string(523, 'a'), 520, &code));
  EXPECT_EQ(OV_EBUFFER, code);
  size_t bytes = 0;
  EXPECT_EQ(OV_ERANGE, ov_path_widen_path("C:/aaaa./bbbb..", nullptr, &bytes));
  EXPECT_EQ(17 * sizeof(wchar_t), bytes);
  wchar_t one[1];
  EXPECT_EQ(OV_EINVAL, ov_path_widen_path(nullptr, one, &bytes));
  EXPECT_EQ(OV_EINVAL, ov_path_widen_path("a", one, nullptr));
}

}  // namespace
