#include "runtime/ov_paths.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

using ov::reference::forEachText;

// The canonical form, or "<failed>". The buffer on the heap is exactly as large as the size given,
// so that a sanitizer sees every byte beyond it.
std::string canonical(const std::string& path, size_t size = OV_PATH_SIZE) {
  const auto out = std::make_unique<char[]>(size);
  return ov_path_canonical_path(path.c_str(), out.get(), size) == 0 ? out.get() : "<failed>";
}

std::string append(const std::string& dir, const std::string& rel, size_t size = OV_PATH_SIZE) {
  const auto out = std::make_unique<char[]>(size);
  return ov_path_append(dir.c_str(), rel.c_str(), out.get(), size) == 0 ? out.get() : "<failed>";
}

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

TEST(PathsTest, CanonicalForms) {
  constexpr Case kCases[] = {
      {"", ""},
      {"a/./b//c/", "a/b/c"},
      {"a/..", "."},
      {"/..", "/"},
      {R"(C:\x\..\..\y)", "C:/y"},
      {"C:", "C:/"},
      {"C:name", "C:/name"},
      {" \t C:\\name", "C:/name"},
      {R"(..\a)", "../a"},
      {"../../a", "../../a"},
      {"a/../../b", "../b"},
      {"..", ".."},
      {"../..", "../.."},
      {"//h/s/d/../..", "//h/s/"},
      {"//h/s/d/", "//h/s/d"},
      {"//h/s", "//h/s/"},
      {R"(\\h\s\d)", "//h/s/d"},
      {"//h//s//d", "//h/s/d"},
      {"//h", "/h"},
      {"//h/", "<failed>"},
      {"////", "<failed>"},
      {"///a", "/a"},
      {"zept://h/a/../b", "zept://h/a/../b"},
      {"http://h/a/../b", "http://h/a/../b"},
      {"a\nb", "<failed>"},
      {"zept://h\n", "<failed>"},
      {"...", "..."},
      {"..x/y", "..x/y"},
      {"a/.../..", "a"},
      {".", "."},
      {"./", "."},
      {"/", "/"},
      {"/a/", "/a"},
      {"/./../a", "/a"},
      {"\xC3\xA4/\xC3\xB6/..", "\xC3\xA4"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.out, canonical(c.in)) << c.in;
}

TEST(PathsTest, SlashBehindKeptDotDotStays) {
  EXPECT_EQ("../", canonical("../"));
  EXPECT_EQ("../a", canonical("../a/"));
}

TEST(PathsTest, CanonicalOfNullIsEmpty) {
  char out[4] = "xxx";
  EXPECT_EQ(0, ov_path_canonical_path(nullptr, out, sizeof out));
  EXPECT_STREQ("", out);
  EXPECT_EQ(-1, ov_path_canonical_path("a", nullptr, 4));
  EXPECT_EQ(-1, ov_path_canonical_path("a", out, 0));
}

TEST(PathsTest, CanonicalEqualsTheReferenceOnAllShortTexts) {
  forEachText("a./\\C: ", 6, [](const std::string& text) {
    ASSERT_EQ(ov::reference::canonical(text).value_or("<failed>"), canonical(text)) << text;
  });
}

std::string randomPath(std::mt19937& random) {
  constexpr const char* kPieces[] = {"a",  "bc", ".", "..", "...", "/",  "//",  "\\",
                                     "C:", "é",  " ", "x.", ".y",  "z/", "/../"};
  std::string text;
  for (size_t count = random() % 20; count > 0; --count) text += kPieces[random() % 15];
  return text;
}

TEST(PathsTest, CanonicalEqualsTheReferenceOnRandomTexts) {
  std::mt19937 random(20260309);
  for (int i = 0; i < 200000; ++i) {
    const std::string text = randomPath(random);
    ASSERT_EQ(ov::reference::canonical(text).value_or("<failed>"), canonical(text)) << text;
  }
}

TEST(PathsTest, CanonicalInPlaceIsTheSame) {
  forEachText("a./\\C:", 6, [](const std::string& text) {
    char buffer[32];
    memcpy(buffer, text.c_str(), text.size() + 1);
    const std::string expected = canonical(text);
    const bool good = ov_path_canonical_path(buffer, buffer, sizeof buffer) == 0;
    ASSERT_EQ(expected, good ? buffer : "<failed>") << text;
  });
}

TEST(PathsTest, CanonicalInASmallBufferIsWholeOrFails) {
  forEachText("a./C:", 6, [](const std::string& text) {
    if (ov::reference::isUri(text)) return;  // these are cut
    const std::string whole = canonical(text);
    for (size_t size = 1; size < text.size() + 3; ++size) {
      const std::string small = canonical(text, size);
      ASSERT_TRUE(small == "<failed>" || small == whole) << text << " in " << size;
      if (size > text.size() + 1 && size > whole.size() + 1) {
        ASSERT_EQ(whole, small) << text;
      }
    }
  });
}

TEST(PathsTest, CanonicalRefusesInputLargerThanTheBuffer) {
  EXPECT_EQ("<failed>", canonical("././././a", 4));
  EXPECT_EQ("<failed>", canonical("C:", 3));
  EXPECT_EQ("C:/", canonical("C:", 4));
  EXPECT_EQ("<failed>", canonical("//h/s", 6));
  EXPECT_EQ("<failed>", canonical("C:x", 4));
}

TEST(PathsTest, UriThatDoesNotFitIsCutAndSuccess) {
  EXPECT_EQ("zept:", canonical("zept://host", 6));
}

TEST(PathsTest, LongPathsWork) {
  std::string path;
  for (int i = 0; i < 2000; ++i) path += "dir/../keep/./";
  std::string expected;
  for (int i = 0; i < 2000; ++i) expected += i == 0 ? "keep" : "/keep";
  EXPECT_EQ(expected, canonical(path, path.size() + 1));
}

TEST(PathsTest, AppendJoins) {
  EXPECT_EQ("/a/b", append("/a", "/b"));
  EXPECT_EQ("/a/b", append("/a/", "b"));
  EXPECT_EQ("/b", append("/a", "../b"));
  EXPECT_EQ("b", append("", "./b"));
  EXPECT_EQ("b", append(".", "b"));
  EXPECT_EQ("b", append(".", "/b"));
  EXPECT_EQ("/b", append("/", "//b"));
  EXPECT_EQ("/b", append("/", "b"));
  EXPECT_EQ("a/C:/x", append("a", "C:/x"));
  EXPECT_EQ("<failed>", append("a", "b\nc"));
  EXPECT_EQ("a", append("a", ""));
}

TEST(PathsTest, AppendEqualsTheReference) {
  forEachText("a./C:", 4, [](const std::string& dir) {
    forEachText("a./C:", 3, [&dir](const std::string& rel) {
      const bool relative = ov_path_is_relative(rel.c_str()) != 0;
      ASSERT_EQ(ov::reference::append(dir, rel, relative).value_or("<failed>"), append(dir, rel))
          << dir << " and " << rel;
    });
  });
}

TEST(PathsTest, AppendOfRandomTextsEqualsTheReference) {
  std::mt19937 random(37);
  for (int i = 0; i < 100000; ++i) {
    const std::string dir = randomPath(random);
    const std::string rel = randomPath(random);
    const bool relative = ov::reference::isRelative(rel);
    ASSERT_EQ(ov::reference::append(dir, rel, relative).value_or("<failed>"), append(dir, rel))
        << dir << " and " << rel;
  }
}

TEST(PathsTest, AppendThatDoesNotFitLooksLikeSuccess) {
  char out[4] = "old";
  EXPECT_EQ(0, ov_path_append("abcd", "x", out, sizeof out));
  EXPECT_STREQ("old", out);
  EXPECT_EQ(0, ov_path_append("a", "b", out, 0));
  EXPECT_STREQ("old", out);
  EXPECT_EQ(0, ov_path_append("abc", "x", out, sizeof out));
  EXPECT_EQ(0, ov_path_append("ab", "xyz", out, sizeof out));
  EXPECT_EQ(-1, ov_path_append(nullptr, "x", out, sizeof out));
  EXPECT_EQ(-1, ov_path_append("x", nullptr, out, sizeof out));
}

TEST(PathsTest, AppendTakesItsOwnBufferAsEitherArgument) {
  char out[32] = "a/b";
  EXPECT_EQ(0, ov_path_append(out, "c", out, sizeof out));
  EXPECT_STREQ("a/b/c", out);
  EXPECT_EQ(0, ov_path_append("d", out, out, sizeof out));
  EXPECT_STREQ("d/a/b/c", out);
  EXPECT_EQ(0, ov_path_append("e", out + 2, out, sizeof out));
  EXPECT_STREQ("e/a/b/c", out);
}

TEST(PathsTest, AppendRefusesALongOverlappingTail) {
  std::string out(2000, 'x');
  out[600] = '\0';
  EXPECT_EQ(0, ov_path_append("d", out.data(), out.data(), out.size()));
  EXPECT_EQ('x', out[0]);
}

TEST(PathsTest, ParentDirectories) {
  EXPECT_EQ(".", parent("a"));
  EXPECT_EQ("/", parent("/"));
  EXPECT_EQ("../..", parent(".."));
  EXPECT_EQ("a", parent("a/b/"));
  EXPECT_EQ("C:/", parent("C:/x"));
  EXPECT_EQ("//h/s/", parent("//h/s/d"));
  EXPECT_EQ("<failed>", parent(""));
  EXPECT_EQ("<failed>", parent(std::string(524, 'a')));
  char out[8];
  EXPECT_EQ(-1, ov_path_parent_dir(nullptr, out, sizeof out));
  EXPECT_EQ(-1, ov_path_parent_dir("a", nullptr, 0));
  EXPECT_EQ(-1, ov_path_parent_dir("long/path", out, 4));
}

TEST(PathsTest, BuildCanonicalPath) {
  char out[OV_PATH_SIZE];
  ov_rc error = -1;
  EXPECT_EQ(out, ov_path_build_canonical_path(out, sizeof out, &error, "%s/./%d", "a", 7));
  EXPECT_STREQ("a/7", out);
  EXPECT_EQ(0, error);
  const std::string longest(519, 'x');
  EXPECT_EQ(out, ov_path_build_canonical_path(out, sizeof out, nullptr, "%s", longest.c_str()));
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(out, sizeof out, &error, "%sx", longest.c_str()));
  EXPECT_EQ(122, error);
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(out, sizeof out, &error, "a\n"));
  EXPECT_EQ(22, error);
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(out, sizeof out, nullptr, "a\n"));
}

TEST(PathsTest, LeavesHomeDir) {
  for (const char* path : {"..", "a/../..", "../a/x", "../b", "a\nb"}) {
    EXPECT_EQ(1, ov_path_leaves_home_dir(path)) << path;
  }
  for (const char* path : {"a/../b", "", "a", "/a", "/..a", "C:/x"}) {
    EXPECT_EQ(0, ov_path_leaves_home_dir(path)) << path;
  }
  EXPECT_EQ(1, ov_path_leaves_home_dir(std::string(600, 'a').c_str()));
}

TEST(PathsTest, PrefixAndRest) {
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

TEST(PathsTest, PrefixFailures) {
  char prefix[OV_PATH_SIZE];
  const char* rest = nullptr;
  EXPECT_EQ(-1, ov_path_unc_parts("//h/", prefix, &rest));
  EXPECT_EQ(-1, ov_path_unc_parts("//h", prefix, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix(nullptr, prefix, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix("a", nullptr, &rest));
  EXPECT_EQ(-1, ov_path_extract_prefix("a", prefix, nullptr));
  const std::string host = "//" + std::string(600, 'h') + "/s/d";
  EXPECT_EQ(-1, ov_path_extract_prefix(host.c_str(), prefix, &rest));
}

TEST(PathsTest, NetworkPaths) {
  for (const char* path : {"//h/", "//h/s", "//ab/", "///a/"}) {
    EXPECT_EQ(1, ov_path_is_unc_path(path)) << path;
  }
  for (const char* path : {"", "/", "//", "//h", "//hs", "/h/s", "h//s/", "///", "///a"}) {
    EXPECT_EQ(0, ov_path_is_unc_path(path)) << path;
  }
  EXPECT_EQ(0, ov_path_is_unc_path(nullptr));
}

TEST(PathsTest, DriveLetters) {
  for (const char* path : {"C:", "z:/x", " \t\r\n\v\fA:b"}) {
    EXPECT_EQ(1, ov_path_has_windows_drive_letter(path)) << path;
  }
  for (const char* path : {"", "C", "1:", "/C:", "CC:", "\xC3\xA4:"}) {
    EXPECT_EQ(0, ov_path_has_windows_drive_letter(path)) << path;
  }
  EXPECT_EQ(0, ov_path_has_windows_drive_letter(nullptr));
}

TEST(PathsTest, RelativePaths) {
  for (const char* path : {"", "  ", "a", "C:name", "C:", "..", "x:y/z", " a/"}) {
    EXPECT_EQ(1, ov_path_is_relative(path)) << path;
  }
  for (const char* path : {"/", "\\", "  /a", "C:/", " C:\\", "http://x", "//h/s"}) {
    EXPECT_EQ(0, ov_path_is_relative(path)) << path;
  }
}

TEST(PathsTest, ZeptUris) {
  EXPECT_EQ(1, ov_path_is_zept_uri("zept://"));
  EXPECT_EQ(0, ov_path_is_zept_uri("Zept://x"));
  EXPECT_EQ(0, ov_path_is_zept_uri("zept:/"));
  EXPECT_EQ(0, ov_path_is_zept_uri(nullptr));
}

TEST(PathsTest, DotDotSegments) {
  for (const char* path : {"..", "a/..", "../a", "a/../b", "/.."}) {
    EXPECT_EQ(1, ov_path_contains_dotdot(path)) << path;
  }
  for (const char* path : {"", ".", "...", "a..", "..a/b", "a\\..", "a/.../b"}) {
    EXPECT_EQ(0, ov_path_contains_dotdot(path)) << path;
  }
}

TEST(PathsTest, NextSeparator) {
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

TEST(PathsTest, RemoveTrailingSlashes) {
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

TEST(PathsTest, RemoveRedundantSlashes) {
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

TEST(PathsTest, ForwardSlashes) {
  char text[] = R"(a\b\c)";
  ov_path_convert_path_to_forward_slashes(text, 3);
  EXPECT_STREQ(R"(a/b\c)", text);
  ov_path_convert_path_to_forward_slashes(text, sizeof text);
  EXPECT_STREQ("a/b/c", text);
}

TEST(PathsTest, EnforceRootedness) {
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

TEST(PathsTest, WidenedTextIsConvertedWhole) {
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

TEST(PathsTest, FormTestsAndRewritingsEqualTheReference) {
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

TEST(PathsTest, BuildCanonicalPathWithoutABufferIsLogged) {
  ov::CapturedLog log;
  ov_rc error = 0;
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(nullptr, 520, &error, "%s", "a"));
  EXPECT_EQ(OV_EINVAL, error);
  EXPECT_EQ(std::vector<std::string>{"LOG ov_path_build_canonical_path: Null buffer"}, log.take());
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(nullptr, 520, nullptr, "%s", "a"));
  EXPECT_EQ(1u, log.take().size());
}

TEST(PathsTest, BuiltPathMustFitItsBuffer) {
  char out[4];
  ov_rc error = 0;
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(out, sizeof out, &error, "%s", "a/bc"));
  EXPECT_EQ(OV_EINVAL, error);
  // 520 bytes fit the formatted text and are too long all the same.
  char large[1024];
  const std::string text(520, 'x');
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(large, sizeof large, &error, "%s", text.c_str()));
  EXPECT_EQ(OV_ERANGE, error);
}

TEST(PathsTest, NullIsTolerated) {
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

TEST(PathsTest, ZeroSizesAreTolerated) {
  char text[] = "a//b";
  ov_path_remove_redundant_slashes(text, 0);
  ov_path_convert_path_to_forward_slashes(text, 0);
  EXPECT_STREQ("a//b", text);
  EXPECT_EQ(OV_EINVAL, ov_path_enforce_rootedness(text, 0));
  EXPECT_EQ(OV_EINVAL, ov_path_enforce_rootedness(text, 4));  // no terminator within
  EXPECT_EQ(-1, ov_path_remove_trailing_slashes("", text, 0));
}

TEST(PathsTest, AppendWithNoRoomForTheSlashLooksLikeSuccess) {
  char out[4] = "old";
  EXPECT_EQ(0, ov_path_append("abc", "", out, sizeof out));
  EXPECT_STREQ("abc", out);
  EXPECT_EQ(0, ov_path_append("ab", "c", out, sizeof out));
  EXPECT_STREQ("ab/", out);  // cut, and not made canonical
}

TEST(PathsTest, HomeDirectoryNeedsABuffer) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(-1, ov_path_home_dir(nullptr, sizeof out));
  EXPECT_EQ(-1, ov_path_home_dir(out, 0));
}

}  // namespace
