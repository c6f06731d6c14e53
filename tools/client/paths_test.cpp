#include "tools/client/paths.h"

#include <gtest/gtest.h>

namespace Vantrel::StandIn {
namespace {

std::string within(const std::string& text) {
  auto path = pathWithin(pathOf("/root"), text);
  return path ? textOf(*path) : "refused";
}

TEST(PathWithinTest, TextsAreRelativeWhateverTheyBeginWith) {
  EXPECT_EQ(within("a/b.bin"), "/root/a/b.bin");
  EXPECT_EQ(within("/a/b.bin"), "/root/a/b.bin");
  EXPECT_EQ(within("\\a\\b.bin"), "/root/a/b.bin");
  EXPECT_EQ(within("//a/./c/../b.bin"), "/root/a/b.bin");
  EXPECT_EQ(within("a/.."), "/root");
}

TEST(PathWithinTest, TheEmptyTextIsTheRoot) {
  EXPECT_EQ(pathWithin(pathOf("/root"), "")->lexically_normal(), pathOf("/root/"));
}

TEST(PathWithinTest, NoTextLeadsOut) {
  EXPECT_EQ(within(".."), "refused");
  EXPECT_EQ(within("../x"), "refused");
  EXPECT_EQ(within("a/../../x"), "refused");
  EXPECT_EQ(within("..\\x"), "refused");
  EXPECT_EQ(within("C:/x"), "refused");
  EXPECT_EQ(within("/C:/x"), "refused");
  EXPECT_EQ(within(std::string("a\0b", 3)), "refused");
}

TEST(PathOfFileUrlTest, TwoAndThreeSlashesNameADrivePath) {
  EXPECT_EQ(pathOfFileUrl("file://C:/a b%20"), "C:/a b%20");
  EXPECT_EQ(pathOfFileUrl("file:///C:/a"), "C:/a");
  EXPECT_EQ(pathOfFileUrl("file:///home/a"), "/home/a");
  EXPECT_EQ(pathOfFileUrl("file:////server/share"), "//server/share");
  EXPECT_EQ(pathOfFileUrl("C:/a"), "C:/a");
  EXPECT_EQ(pathOfFileUrl("file://"), "");
}

TEST(PathOfRemoteUrlTest, SchemeHostQueryAndFragmentGo) {
  EXPECT_EQ(pathOfRemoteUrl("http://host:80/a%20b/c.bin?x=/1#f"), "/a b/c.bin");
  EXPECT_EQ(pathOfRemoteUrl("ftp://host"), "");
  EXPECT_EQ(pathOfRemoteUrl("/plain%20path"), "/plain%20path");
  EXPECT_EQ(pathOfRemoteUrl("http://h/%zz%4"), "/%zz%4");
}

TEST(PathTextTest, NonAsciiNamesGoThereAndBack) {
  std::string name = "\xC3\xA9/\xE2\x82\xAC.bin";
  EXPECT_EQ(textOf(pathOf(name)), name);
}

}  // namespace
}  // namespace Vantrel::StandIn
