#include "runtime/log/generations.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string directory(const std::string& path) {
  char out[ov::kLogPathRoom];
  ov::LogGenerations(path).directory(out);
  return out;
}

std::string generation(const std::string& path, int digit) {
  char out[ov::kLogGenerationPathRoom];
  ov::LogGenerations(path).pathOf(digit, out);
  return out;
}

int digit(const std::string& path, const std::string& entry) {
  return ov::LogGenerations(path).digitOf(entry);
}

// What is chosen when the generations of these digits exist.
int choice(const std::string& digits) {
  ov::LogGenerationSet existing;
  for (const char c : digits) existing.set(static_cast<size_t>(c - '0'));
  return ov::choose_log_generation(existing);
}

TEST(LogGenerationsTest, DigitStandsBeforeTheLastExtensionOfTheBaseName) {
  EXPECT_EQ("dir/stem.0.ext", generation("dir/stem.ext", 0));
  EXPECT_EQ("dir/stem.9.ext", generation("dir/stem.ext", 9));
  EXPECT_EQ("dir/stem.3", generation("dir/stem", 3));
  EXPECT_EQ("a.b.0.log", generation("a.b.log", 0));
  EXPECT_EQ("d.x/stem.1", generation("d.x/stem", 1));
  EXPECT_EQ("d/.1.log", generation("d/.log", 1));
  EXPECT_EQ("d/stem.1.", generation("d/stem.", 1));
  EXPECT_EQ("x.5.log:5", generation("x.log:5", 5));
}

TEST(LogGenerationsTest, LongestPathFits) {
  const std::string path = std::string(515, 'x') + ".log";
  EXPECT_EQ(std::string(515, 'x') + ".7.log", generation(path, 7));
  const std::string deep = std::string(518, 'x') + "/";
  EXPECT_EQ(std::string(518, 'x'), directory(deep));
}

TEST(LogGenerationsTest, DirectoryIsThatOfThePath) {
  EXPECT_EQ("dir/sub", directory("dir/sub/stem.ext"));
  EXPECT_EQ(".", directory("stem.ext"));
  EXPECT_EQ("/", directory("/stem.ext"));
  EXPECT_EQ("C:/", directory("C:/stem.ext"));
  EXPECT_EQ("C:/dir", directory("C:/dir/stem.ext"));
}

TEST(LogGenerationsTest, EntriesCountByLengthDigitStemAndExtension) {
  EXPECT_EQ(0, digit("d/stem.ext", "stem.0.ext"));
  EXPECT_EQ(9, digit("d/stem.ext", "stem.9.ext"));
  EXPECT_EQ(4, digit("d/stem", "stem.4"));
  EXPECT_EQ(2, digit("d/a.b.log", "a.b.2.log"));
  EXPECT_EQ(1, digit("d/.log", ".1.log"));
  for (const char* entry : {"stem.ext", "stem.10.ext", "stem.x.ext", "stem.:.ext", "stem./.ext",
                            "Stem.0.ext", "stem.0.Ext", "stem-0.ext", "stem.0-ext", "stem.0.exts",
                            "xstem.0.ext", "", ".", "..", "stem.0."}) {
    EXPECT_EQ(-1, digit("d/stem.ext", entry)) << entry;
  }
}

TEST(LogGenerationsTest, EveryGenerationIsFoundByItsOwnName) {
  for (const std::string path : {"d/stem.ext", "d/stem", "a.b.c", ".log", "x."}) {
    for (int i = 0; i < ov::kLogGenerationCount; ++i) {
      const std::string whole = generation(path, i);
      const size_t slash = whole.rfind('/');
      EXPECT_EQ(i, digit(path, slash == std::string::npos ? whole : whole.substr(slash + 1)));
    }
  }
}

TEST(LogGenerationsTest, WritingResumesBeforeTheGap) {
  EXPECT_EQ(-1, choice(""));
  EXPECT_EQ(2, choice("012"));
  EXPECT_EQ(5, choice("345"));
  EXPECT_EQ(1, choice("0134"));
  EXPECT_EQ(8, choice("012345678"));
  EXPECT_EQ(0, choice("09"));
  EXPECT_EQ(9, choice("9"));
  EXPECT_EQ(9, choice("0123456789"));
  EXPECT_EQ(0, choice("0"));
}

TEST(LogGenerationsTest, EverySetResumesAtTheEndOfItsFirstRun) {
  for (unsigned set = 1; set < 1024; ++set) {
    unsigned digit = 0;
    while ((set >> digit & 1) == 0) ++digit;
    while (digit < 9 && (set >> (digit + 1) & 1) != 0) ++digit;
    EXPECT_EQ(static_cast<int>(digit), ov::choose_log_generation(ov::LogGenerationSet(set)));
  }
}

TEST(LogGenerationsTest, RingWrapsBehindNine) {
  EXPECT_EQ(1, ov::next_log_generation(0));
  EXPECT_EQ(0, ov::next_log_generation(9));
}

}  // namespace
