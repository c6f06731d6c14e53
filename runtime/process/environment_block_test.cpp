#include "runtime/process/environment_block.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The entries of the block, or one "<failed>".
std::vector<std::u16string> built(const std::string& root, const std::vector<const char*>& entries,
                                  int32_t count = -2) {
  static uint16_t block[ov::kEnvironmentBlockUnits];
  const int32_t told = count == -2 ? static_cast<int32_t>(entries.size()) : count;
  if (ov::build_environment_block(root.c_str(), entries.data(), told, block) != 0) {
    return {u"<failed>"};
  }
  std::vector<std::u16string> result;
  for (size_t at = 0; block[at] != 0; at += result.back().size() + 1) {
    std::u16string entry;
    for (size_t i = at; block[i] != 0; ++i) entry += static_cast<char16_t>(block[i]);
    result.push_back(entry);
  }
  return result;
}

using Entries = std::vector<std::u16string>;

TEST(EnvironmentBlockTest, SystemRootIsAlwaysThere) {
  EXPECT_EQ(Entries{u"SystemRoot=C:\\w"}, built("C:\\w", {}));
  EXPECT_EQ(Entries{u"SystemRoot=C:\\w"}, built("C:\\w", {"A=1"}, 0));
  EXPECT_EQ(Entries{u"SystemRoot=C:\\w"}, built("C:\\w", {"A=1"}, -1));
  EXPECT_EQ(u"SystemRoot=" + std::u16string(501, u'x'), built(std::string(600, 'x'), {})[0]);
}

TEST(EnvironmentBlockTest, EntriesAreSortedByByte) {
  EXPECT_EQ((Entries{u"A=1", u"B=2", u"SystemRoot=r", u"a=3", u"\u00E4=4"}),
            built("r", {"a=3", "\xC3\xA4=4", "B=2", nullptr, "A=1"}));
}

TEST(EnvironmentBlockTest, NoMoreThan4094EntriesAreTaken) {
  const std::vector<const char*> entries(5000, "T=");
  EXPECT_EQ(4095U, built("r", entries).size());
}

TEST(EnvironmentBlockTest, BlockHolds32766Bytes) {
  // The root's entry has 13 units with its terminator, of 16383.
  const std::string fits(16383 - 13 - 1, 'x');
  EXPECT_EQ(2U, built("r", {fits.c_str()}).size());
  EXPECT_EQ(Entries{u"<failed>"}, built("r", {(fits + "x").c_str()}));
  EXPECT_EQ(Entries{u"<failed>"}, built("r", {fits.c_str(), "z"}));
}

TEST(EnvironmentBlockTest, IllFormedEntryFails) {
  EXPECT_EQ(Entries{u"<failed>"}, built("r", {"A=\xFF"}));
}

}  // namespace
