#include "runtime/ov_paths.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <random>
#include <string>

#include "runtime/ov_errors.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

using ov::reference::forEachText;
using ov::reference::randomPath;

std::string parent(const std::string& path) {
  char out[OV_PATH_SIZE];
  const int32_t length = ov_path_parent_dir(path.c_str(), out, sizeof out);
  if (length < 0) return "<failed>";
  EXPECT_EQ(strlen(out), static_cast<size_t>(length));
  return out;
}

struct Case {
  const char* in;
  const char* out;
};

TEST(FormTest, PrefixAndRest) {
  struct Split {
    const char *path, *prefix, *rest;
  };
  constexpr Split kSplits[] = {
      {"a/b", "", "a/b"},
      {"/a", "/", "a"},
      {"//a", "/", "a"},
      {"///a", "/", "/a"},
      {"C:a", "C:/", "a"},
      {"  C:///a", "C:/", "a"},
      {"C:", "C:/", ""},
      {"//h/s/d", "//h/s/", "d"},
      {"//h//s///d", "//h/s/", "//d"},
      {"//h/s/", "//h/s/", nullptr},
      {"//h/s", "//h/s/", nullptr},
  };
  for (const Split& split : kSplits) {
    char prefix[OV_PATH_SIZE] = "old";
    const char* rest = "old";
    EXPECT_EQ(0, ov_path_extract_prefix(split.path, prefix, &rest)) << split.path;
    EXPECT_STREQ(split.prefix, prefix) << split.path;
    EXPECT_STREQ(split.rest, rest) << split.path;
  }
}

TEST(FormTest, PrefixFailures) {
  char prefix[OV_PATH_SIZE];
  const char* rest = nullptr;
  EXPECT_EQ(-1, ov_path_unc_parts("//h/", prefix, &rest));
  EXPECT_EQ(-1, ov_path_unc_parts("//h", prefix, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix(nullptr, prefix, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix("a", nullptr, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix("a", prefix, nullptr));
  const std::string host = "//" + std::string(600, 'h') + "/s/d";
  EXPECT_EQ(-1, ov_path_extract_prefix(host.c_str(), prefix, &rest));
  EXPECT_STREQ("", prefix);
  strcpy(prefix, "old");
  EXPECT_EQ(-1, ov_path_unc_parts("//h/", prefix, &rest));
  EXPECT_STREQ("", prefix);
}

TEST(FormTest, NetworkPaths) {
  for (const char* path : {"//h/", "//h/s", "//ab/", "///a/"}) {
    EXPECT_EQ(1, ov_path_is_unc_path(path)) << path;
  }
  for (const char* path : {"", "/", "//", "//h", "//hs", "/h/s", "h//s/", "///", "///a"}) {
    EXPECT_EQ(0, ov_path_is_unc_path(path)) << path;
  }
  EXPECT_EQ(0, ov_path_is_unc_path(nullptr));
}

TEST(FormTest, DriveLetters) {
  for (const char* path : {"C:", "z:/x", " \t\r\n\v\fA:b"}) {
    EXPECT_EQ(1, ov_path_has_windows_drive_letter(path)) << path;
  }
  for (const char* path : {"", "C", "1:", "/C:", "CC:", "\xC3\xA4:"}) {
    EXPECT_EQ(0, ov_path_has_windows_drive_letter(path)) << path;
  }
  EXPECT_EQ(0, ov_path_has_windows_drive_letter(nullptr));
}

TEST(FormTest, RelativePaths) {
  for (const char* path : {"", "  ", "a", "C:name", "C:", "..", "x:y/z", " a/"}) {
    EXPECT_EQ(1, ov_path_is_relative(path)) << path;
  }
  for (const char* path : {"/", "\\", "  /a", "C:/", " C:\\", "http://x", "//h/s"}) {
    EXPECT_EQ(0, ov_path_is_relative(path)) << path;
  }
}

TEST(FormTest, ZeptUris) {
  EXPECT_EQ(1, ov_path_is_zept_uri("zept://"));
  EXPECT_EQ(0, ov_path_is_zept_uri("Zept://x"));
  EXPECT_EQ(0, ov_path_is_zept_uri("zept:/"));
  EXPECT_EQ(0, ov_path_is_zept_uri(nullptr));
}

TEST(FormTest, DotDotSegments) {
  for (const char* path : {"..", "a/..", "../a", "a/../b", "/.."}) {
    EXPECT_EQ(1, ov_path_contains_dotdot(path)) << path;
  }
  for (const char* path : {"", ".", "...", "a..", "..a/b", "a\\..", "a/.../b"}) {
    EXPECT_EQ(0, ov_path_contains_dotdot(path)) << path;
  }
}

TEST(FormTest, NextSeparator) {
  struct Next {
    const char* path;
    int offset;  // -1 for none
  };
  constexpr Next kNexts[] = {{"a/b", 1},      {"/a/b", 2},  {"//a", -1},    {"C:/a/b", 4},
                             {"C:a/b", 3},    {"C:/", -1},  {"//h/s/d", 5}, {"//h/s", -1},
                             {"//h//s/d", 6}, {"a", -1},    {"", -1},       {"a/", 1},
                             {"///", -1},     {"a//b/c", 1}};
  for (const Next& next : kNexts) {
    const char* const found = ov_path_next_dirsep(next.path);
    EXPECT_EQ(next.offset, found == nullptr ? -1 : found - next.path) << next.path;
  }
  EXPECT_EQ(nullptr, ov_path_next_dirsep(nullptr));
}

TEST(FormTest, RemoveTrailingSlashes) {
  char out[8];
  EXPECT_EQ(3, ov_path_remove_trailing_slashes("a/b///", out, sizeof out));
  EXPECT_STREQ("a/b", out);
  EXPECT_EQ(0, ov_path_remove_trailing_slashes("///", out, sizeof out));
  EXPECT_STREQ("", out);
  EXPECT_EQ(-1, ov_path_remove_trailing_slashes("1234567/", out, sizeof out));
  strcpy(out, "x//");
  EXPECT_EQ(1, ov_path_remove_trailing_slashes(out, out, sizeof out));
  EXPECT_STREQ("x", out);
}

TEST(FormTest, RemoveRedundantSlashes) {
  constexpr Case kCases[] = {
      {"a//b///c", "a/b/c"}, {"//a//b", "//a/b"}, {"///a", "//a"}, {"", ""}, {"/", "/"},
      {"//", "//"},          {"a/", "a/"},        {"a//", "a/"}};
  for (const Case& c : kCases) {
    char text[16];
    strcpy(text, c.in);
    ov_path_remove_redundant_slashes(text, sizeof text);
    EXPECT_STREQ(c.out, text) << c.in;
  }
  char bounded[] = "a//b//";
  ov_path_remove_redundant_slashes(bounded, 4);
  EXPECT_STREQ("a/b", bounded);
}

TEST(FormTest, ForwardSlashes) {
  char text[] = R"(a\b\c)";
  ov_path_convert_path_to_forward_slashes(text, 3);
  EXPECT_STREQ(R"(a/b\c)", text);
  ov_path_convert_path_to_forward_slashes(text, sizeof text);
  EXPECT_STREQ("a/b/c", text);
}

TEST(FormTest, EnforceRootedness) {
  constexpr Case kCases[] = {{" \tC:\\a", "C:/a"}, {"  /a\\b", "/a/b"}, {"\\\\h\\s", "//h/s"},
                             {"a", "/a"},          {"", "/"},           {" a b", "/a b"}};
  for (const Case& c : kCases) {
    char text[16];
    strcpy(text, c.in);
    EXPECT_EQ(0, ov_path_enforce_rootedness(text, sizeof text)) << c.in;
    EXPECT_STREQ(c.out, text) << c.in;
  }
  char drive[] = "C:a";
  EXPECT_EQ(22, ov_path_enforce_rootedness(drive, sizeof drive));
  char full[] = "abc";
  EXPECT_EQ(206, ov_path_enforce_rootedness(full, sizeof full));
  char roomy[5] = "abc";
  EXPECT_EQ(0, ov_path_enforce_rootedness(roomy, sizeof roomy));
  EXPECT_STREQ("/abc", roomy);
  EXPECT_EQ(22, ov_path_enforce_rootedness(nullptr, 5));
}

void compareForms(const std::string& text) {
  const char* const path = text.c_str();
  ASSERT_EQ(ov::reference::isRelative(text), ov_path_is_relative(path) == 1) << text;
  ASSERT_EQ(ov::reference::isNetworkPath(text), ov_path_is_unc_path(path) == 1) << text;
  ASSERT_EQ(ov::reference::containsDotdot(text), ov_path_contains_dotdot(path) == 1) << text;
  ASSERT_EQ(ov::reference::leavesHome(text), ov_path_leaves_home_dir(path) == 1) << text;
  ASSERT_EQ(ov::reference::parent(text).value_or("<failed>"), parent(text)) << text;
  const char* const next = ov_path_next_dirsep(path);
  ASSERT_EQ(ov::reference::nextSeparator(text),
            next == nullptr ? std::string::npos : static_cast<size_t>(next - path))
      << text;
}

void compareRewritings(const std::string& text) {
  char buffer[256];
  strcpy(buffer, text.c_str());
  ov_path_remove_redundant_slashes(buffer, sizeof buffer);
  ASSERT_EQ(ov::reference::withoutRedundantSlashes(text), buffer) << text;
  strcpy(buffer, text.c_str());
  const ov_rc code = ov_path_enforce_rootedness(buffer, sizeof buffer);
  const std::optional<std::string> expected = ov::reference::rooted(text);
  ASSERT_EQ(expected ? 0 : OV_EINVAL, code) << text;
  if (expected) {
    ASSERT_EQ(*expected, buffer) << text;
  }
}

TEST(FormTest, FormTestsAndRewritingsEqualTheReference) {
  forEachText("a./\\C: ", 5, [](const std::string& text) {
    ASSERT_NO_FATAL_FAILURE(compareForms(text));
    ASSERT_NO_FATAL_FAILURE(compareRewritings(text));
  });
  std::mt19937 random(41);
  for (int i = 0; i < 50000; ++i) {
    const std::string text = randomPath(random);
    ASSERT_NO_FATAL_FAILURE(compareForms(text));
    ASSERT_NO_FATAL_FAILURE(compareRewritings(text));
  }
}

TEST(FormTest, ZeroSizesAreTolerated) {
  char text[] = "a//b";
  ov_path_remove_redundant_slashes(text, 0);
  ov_path_convert_path_to_forward_slashes(text, 0);
  EXPECT_STREQ("a//b", text);
  EXPECT_EQ(OV_EINVAL, ov_path_enforce_rootedness(text, 0));
  EXPECT_EQ(OV_EINVAL, ov_path_enforce_rootedness(text, 4));  // no terminator within
  EXPECT_EQ(-1, ov_path_remove_trailing_slashes("", text, 0));
}

TEST(FormTest, NullIsTolerated) {
  char out[8];
  const char* rest = nullptr;
  EXPECT_EQ(1, ov_path_is_relative(nullptr));
  EXPECT_EQ(0, ov_path_contains_dotdot(nullptr));
  EXPECT_EQ(0, ov_path_leaves_home_dir(nullptr));
  EXPECT_EQ(-1, ov_path_append("a", "b", nullptr, 8));
  EXPECT_EQ(-1, ov_path_unc_parts(nullptr, out, &rest));
  EXPECT_EQ(-1, ov_path_unc_parts("//h/s", nullptr, &rest));
  EXPECT_EQ(-1, ov_path_unc_parts("//h/s", out, nullptr));
  EXPECT_EQ(-1, ov_path_remove_trailing_slashes(nullptr, out, sizeof out));
  EXPECT_EQ(-1, ov_path_remove_trailing_slashes("a", nullptr, 8));
  ov_path_remove_redundant_slashes(nullptr, 8);
  ov_path_convert_path_to_forward_slashes(nullptr, 8);
}

}  // namespace
