#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_paths.h"
#include "tests/support/runtime/paths_reference.h"

namespace {

// The path walked from a prefix along a text, or "<failed>".
std::string walked(const std::string& prefix, const std::string& text, size_t size = 1024) {
  ov_path path;
  ov_path_init(&path);
  strcpy(path.prefix, prefix.c_str());
  ov_path_string_to_path(&path, text.c_str());
  std::string out(size, '#');
  return ov_path_path_to_string(&path, out.data(), size) == 0 ? out.c_str() : "<failed>";
}

TEST(PathSegmentsTest, Walks) {
  EXPECT_EQ("a/b", walked("", "//a//./b/"));
  EXPECT_EQ(".", walked("", ""));
  EXPECT_EQ(".", walked("", "a/.."));
  EXPECT_EQ("..", walked("", ".."));
  EXPECT_EQ("../../a", walked("", "../../a"));
  EXPECT_EQ("../b", walked("", "a/../../b"));
  EXPECT_EQ("C:/b", walked("C:/", "../a/../b"));
  EXPECT_EQ("/", walked("/", "../.."));
  EXPECT_EQ("...", walked("", "..."));
}

TEST(PathSegmentsTest, NameThatBeginsWithDotsHoldsUp) {
  // Only a segment that does not begin with ".." can be left.
  EXPECT_EQ("..x/..", walked("", "..x/.."));
  EXPECT_EQ("a", walked("", "a/..x/.."));
}

TEST(PathSegmentsTest, WalksEqualTheReference) {
  std::vector<std::string> texts = {""};
  for (size_t at = 0; texts[at].size() < 8; ++at) {
    for (const char letter : {'a', '.', '/'}) texts.push_back(texts[at] + letter);
  }
  for (const std::string& text : texts) {
    for (const char* prefix : {"", "/", "C:/"}) {
      ASSERT_EQ(ov::reference::walked(prefix, text), walked(prefix, text)) << text;
    }
  }
}

TEST(PathSegmentsTest, RandomWalksEqualTheReference) {
  std::mt19937 random(43);
  constexpr const char* kPieces[] = {"a", "b/", "..", "/..", "/", ".", "..x", "/../"};
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t count = random() % 40; count > 0; --count) text += kPieces[random() % 8];
    const char* const prefix = i % 2 == 0 ? "" : "//h/s/";
    ASSERT_EQ(ov::reference::walked(prefix, text), walked(prefix, text)) << text;
  }
}

TEST(PathSegmentsTest, StepsPointIntoTheText) {
  ov_path path;
  ov_path_init(&path);
  EXPECT_EQ(0, ov_path_can_go_up_a_directory(&path));
  const char text[] = "one/two";
  ov_path_change_directory(&path, text, 3);
  ov_path_change_directory(&path, text + 4, 3);
  ASSERT_EQ(2, path.count);
  EXPECT_EQ(text + 4, path.segments[1].text);
  EXPECT_EQ(3U, path.segments[1].length);
  EXPECT_EQ(0U, path.segments[1].reserved);
  EXPECT_EQ(nullptr, path.segments[2].text);
  EXPECT_EQ(1, ov_path_can_go_up_a_directory(&path));
  ov_path_change_directory(&path, "..", 2);
  EXPECT_EQ(1, path.count);
  EXPECT_EQ(nullptr, path.segments[1].text);
  ov_path_change_directory(&path, "", 0);
  ov_path_change_directory(&path, ".", 1);
  EXPECT_EQ(1, path.count);
}

TEST(PathSegmentsTest, PrefixAloneCanGoUp) {
  ov_path path;
  ov_path_init(&path);
  strcpy(path.prefix, "/");
  EXPECT_EQ(1, ov_path_can_go_up_a_directory(&path));
  ov_path_change_directory(&path, "..", 2);
  EXPECT_EQ(0, path.count);
}

TEST(PathSegmentsTest, HoldsTwoHundredAndSixtySegments) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "x/";
  ov_path path;
  ov_path_init(&path);
  ov_path_string_to_path(&path, text.c_str());
  EXPECT_EQ(260, path.count);
  EXPECT_EQ(nullptr, path.segments[260].text);
  EXPECT_EQ(519U, walked("", text).size());
}

TEST(PathSegmentsTest, TextThatDoesNotFitFails) {
  EXPECT_EQ("a/b", walked("", "a/b", 4));
  EXPECT_EQ("<failed>", walked("", "a/b", 3));
  EXPECT_EQ("<failed>", walked("", "a/b", 2));
  EXPECT_EQ("<failed>", walked("/abc", "", 4));
  EXPECT_EQ("<failed>", walked("", "", 1));
}

TEST(PathSegmentsTest, NullIsTolerated) {
  ov_path path;
  ov_path_init(nullptr);
  ov_path_init(&path);
  ov_path_string_to_path(nullptr, "a");
  ov_path_string_to_path(&path, nullptr);
  ov_path_change_directory(&path, nullptr, 1);
  EXPECT_EQ(0, ov_path_can_go_up_a_directory(nullptr));
  char out[4];
  EXPECT_EQ(-1, ov_path_path_to_string(nullptr, out, 4));
  EXPECT_EQ(-1, ov_path_path_to_string(&path, nullptr, 4));
  EXPECT_EQ(-1, ov_path_path_to_string(&path, out, 0));
}

}  // namespace
