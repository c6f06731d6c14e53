#include "runtime/ov_paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

using ov::reference::forEachText;
using ov::reference::randomPath;

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

TEST(CanonicalTest, CanonicalForms) {
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

TEST(CanonicalTest, SlashBehindKeptDotDotStays) {
  EXPECT_EQ("../", canonical("../"));
  EXPECT_EQ("../a", canonical("../a/"));
}

TEST(CanonicalTest, CanonicalOfNullIsEmpty) {
  char out[4] = "xxx";
  EXPECT_EQ(0, ov_path_canonical_path(nullptr, out, sizeof out));
  EXPECT_STREQ("", out);
  EXPECT_EQ(-1, ov_path_canonical_path("a", nullptr, 4));
  EXPECT_EQ(-1, ov_path_canonical_path("a", out, 0));
}

TEST(CanonicalTest, CanonicalEqualsTheReferenceOnAllShortTexts) {
  forEachText("a./\\C: ", 6, [](const std::string& text) {
    ASSERT_EQ(ov::reference::canonical(text).value_or("<failed>"), canonical(text)) << text;
  });
}

TEST(CanonicalTest, CanonicalEqualsTheReferenceOnRandomTexts) {
  std::mt19937 random(20260309);
  for (int i = 0; i < 200000; ++i) {
    const std::string text = randomPath(random);
    ASSERT_EQ(ov::reference::canonical(text).value_or("<failed>"), canonical(text)) << text;
  }
}

TEST(CanonicalTest, CanonicalInPlaceIsTheSame) {
  forEachText("a./\\C:", 6, [](const std::string& text) {
    char buffer[32];
    memcpy(buffer, text.c_str(), text.size() + 1);
    const std::string expected = canonical(text);
    const bool good = ov_path_canonical_path(buffer, buffer, sizeof buffer) == 0;
    ASSERT_EQ(expected, good ? buffer : "<failed>") << text;
  });
}

TEST(CanonicalTest, CanonicalInASmallBufferIsWholeOrFails) {
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

TEST(CanonicalTest, CanonicalRefusesInputLargerThanTheBuffer) {
  EXPECT_EQ("<failed>", canonical("././././a", 4));
  EXPECT_EQ("<failed>", canonical("C:", 3));
  EXPECT_EQ("C:/", canonical("C:", 4));
  EXPECT_EQ("<failed>", canonical("//h/s", 6));
  EXPECT_EQ("<failed>", canonical("C:x", 4));
}

// What stands in a buffer of `size` bytes that was full of other text.
std::string leftBehind(const std::function<int32_t(char* out)>& call, size_t size) {
  std::vector<char> out(size, '#');
  EXPECT_EQ(-1, call(out.data()));
  const auto end = std::find(out.begin(), out.end(), '\0');
  EXPECT_NE(out.end(), end);
  return {out.begin(), end};
}

TEST(CanonicalTest, FailureLeavesAnEmptyText) {
  for (const char* path : {"a\nb", "//h/", "a/b/c/d", "C:\\x", "//h/s"}) {
    for (const size_t size : {1U, 2U, 3U, 4U}) {
      EXPECT_EQ(
          "", leftBehind([&](char* out) { return ov_path_canonical_path(path, out, size); }, size))
          << path;
      EXPECT_EQ("",
                leftBehind([&](char* out) { return ov_path_parent_dir(path, out, size); }, size))
          << path;
    }
  }
  for (const std::string& path : {std::string(), std::string(524, 'a'), std::string(522, 'a')}) {
    EXPECT_EQ(
        "", leftBehind([&](char* out) { return ov_path_parent_dir(path.c_str(), out, 520); }, 520));
  }
  char same[8] = "a\nb";
  EXPECT_EQ(-1, ov_path_canonical_path(same, same, sizeof same));
  EXPECT_STREQ("", same);
  EXPECT_EQ("", leftBehind([](char* out) { return ov_path_append("a", "b\nc", out, 16); }, 16));
}

// The parent is a byte longer on its way than what was joined: "//aaa/.." is a network path.
TEST(CanonicalTest, ParentOfADoubledSlashAndALongNameDoesNotFit) {
  char out[OV_PATH_SIZE] = "old";
  const std::string longest = "//" + std::string(513, 'a');
  EXPECT_EQ(519, ov_path_parent_dir(longest.c_str(), out, sizeof out));
  EXPECT_EQ(longest + "/../", out);
  EXPECT_EQ(-1, ov_path_parent_dir((longest + "a").c_str(), out, sizeof out));
  EXPECT_STREQ("", out);
}

TEST(CanonicalTest, UriThatDoesNotFitIsCutAndSuccess) {
  EXPECT_EQ("zept:", canonical("zept://host", 6));
}

TEST(CanonicalTest, LongPathsWork) {
  std::string path;
  for (int i = 0; i < 2000; ++i) path += "dir/../keep/./";
  std::string expected;
  for (int i = 0; i < 2000; ++i) expected += i == 0 ? "keep" : "/keep";
  EXPECT_EQ(expected, canonical(path, path.size() + 1));
}

TEST(CanonicalTest, AppendJoins) {
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

TEST(CanonicalTest, AppendEqualsTheReference) {
  forEachText("a./C:", 4, [](const std::string& dir) {
    forEachText("a./C:", 3, [&dir](const std::string& rel) {
      const bool relative = ov_path_is_relative(rel.c_str()) != 0;
      ASSERT_EQ(ov::reference::append(dir, rel, relative).value_or("<failed>"), append(dir, rel))
          << dir << " and " << rel;
    });
  });
}

TEST(CanonicalTest, AppendOfRandomTextsEqualsTheReference) {
  std::mt19937 random(37);
  for (int i = 0; i < 100000; ++i) {
    const std::string dir = randomPath(random);
    const std::string rel = randomPath(random);
    const bool relative = ov::reference::isRelative(rel);
    ASSERT_EQ(ov::reference::append(dir, rel, relative).value_or("<failed>"), append(dir, rel))
        << dir << " and " << rel;
  }
}

TEST(CanonicalTest, AppendThatDoesNotFitLooksLikeSuccess) {
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

TEST(CanonicalTest, AppendTakesItsOwnBufferAsEitherArgument) {
  char out[32] = "a/b";
  EXPECT_EQ(0, ov_path_append(out, "c", out, sizeof out));
  EXPECT_STREQ("a/b/c", out);
  EXPECT_EQ(0, ov_path_append("d", out, out, sizeof out));
  EXPECT_STREQ("d/a/b/c", out);
  EXPECT_EQ(0, ov_path_append("e", out + 2, out, sizeof out));
  EXPECT_STREQ("e/a/b/c", out);
}

TEST(CanonicalTest, AppendRefusesALongOverlappingTail) {
  std::string out(2000, 'x');
  out[600] = '\0';
  EXPECT_EQ(0, ov_path_append("d", out.data(), out.data(), out.size()));
  EXPECT_EQ('x', out[0]);
}

TEST(CanonicalTest, ParentDirectories) {
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

TEST(CanonicalTest, BuildCanonicalPath) {
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

TEST(CanonicalTest, LeavesHomeDir) {
  for (const char* path : {"..", "a/../..", "../a/x", "../b", "a\nb"}) {
    EXPECT_EQ(1, ov_path_leaves_home_dir(path)) << path;
  }
  for (const char* path : {"a/../b", "", "a", "/a", "/..a", "C:/x"}) {
    EXPECT_EQ(0, ov_path_leaves_home_dir(path)) << path;
  }
  EXPECT_EQ(1, ov_path_leaves_home_dir(std::string(600, 'a').c_str()));
}

TEST(CanonicalTest, BuildCanonicalPathWithoutABufferIsLogged) {
  ov::CapturedLog log;
  ov_rc error = 0;
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(nullptr, 520, &error, "%s", "a"));
  EXPECT_EQ(OV_EINVAL, error);
  EXPECT_EQ(std::vector<std::string>{"LOG ov_path_build_canonical_path: Null buffer"}, log.take());
  EXPECT_EQ(nullptr, ov_path_build_canonical_path(nullptr, 520, nullptr, "%s", "a"));
  EXPECT_EQ(1u, log.take().size());
}

TEST(CanonicalTest, BuiltPathMustFitItsBuffer) {
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

TEST(CanonicalTest, AppendWithNoRoomForTheSlashLooksLikeSuccess) {
  char out[4] = "old";
  EXPECT_EQ(0, ov_path_append("abc", "", out, sizeof out));
  EXPECT_STREQ("abc", out);
  EXPECT_EQ(0, ov_path_append("ab", "c", out, sizeof out));
  EXPECT_STREQ("ab/", out);  // cut, and not made canonical
}

TEST(CanonicalTest, HomeDirectoryNeedsABuffer) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(-1, ov_path_home_dir(nullptr, sizeof out));
  EXPECT_EQ(-1, ov_path_home_dir(out, 0));
}

}  // namespace
