#include "text/text.h"

#include <gtest/gtest.h>

namespace Vantrel::Web {
namespace {

TEST(ReplaceAllTest, EmptyTextOrEmptyFromReturnsTheText) {
  EXPECT_EQ(replaceAll("", "a", "b"), "");
  EXPECT_EQ(replaceAll("abc", "", "b"), "abc");
}

TEST(ReplaceAllTest, ReplacedTextIsNotSearchedAgain) {
  EXPECT_EQ(replaceAll("aa", "a", "aa"), "aaaa");
  EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(replaceAll("xax", "x", ""), "a");
}

TEST(ReplaceAllTest, KeepsBytesBehindANul) {
  EXPECT_EQ(replaceAll(std::string_view("a\0a", 3), "a", "b"), std::string_view("b\0b", 3));
}

TEST(JoinPathsTest, AnEmptyPartLeavesTheOther) {
  EXPECT_EQ(joinPaths("", "\\x"), "/x");
  EXPECT_EQ(joinPaths("c:\\d", ""), "c:/d");
  EXPECT_EQ(joinPaths("", ""), "");
}

TEST(JoinPathsTest, OneSlashStandsBetweenTheParts) {
  EXPECT_EQ(joinPaths("c:/d/", "/x"), "c:/d/x");
  EXPECT_EQ(joinPaths("c:/d", "x"), "c:/d/x");
  EXPECT_EQ(joinPaths("c:\\d\\", "x\\y"), "c:/d/x/y");
}

TEST(JoinPathsTest, DropsOneLeadingSlashOnly) {
  EXPECT_EQ(joinPaths("a/", "//b"), "a//b");
}

TEST(JoinPathsTest, SegmentsAreNotResolved) {
  EXPECT_EQ(joinPaths("a/..", "../b"), "a/../../b");
}

TEST(PathJoinerTest, JoinsEachPathAfreshToTheSameRoot) {
  PathJoiner joiner("c:\\d");
  EXPECT_EQ(joiner.join("\\x\\y"), "c:/d/x/y");
  EXPECT_EQ(joiner.join(""), "c:/d");
  EXPECT_EQ(joiner.join("z"), "c:/d/z");
  PathJoiner rootless("");
  EXPECT_EQ(rootless.join("\\x"), "/x");
  EXPECT_EQ(rootless.join(""), "");
}

TEST(QuotePathTest, DoublesBackslashesOnly) {
  EXPECT_EQ(quotePath("C:\\a\\b", false), "C:\\\\a\\\\b");
  EXPECT_EQ(quotePath("C:\\a", true), "\"C:\\\\a\"");
  EXPECT_EQ(quotePath("say \"hi\"\n", true), "\"say \"hi\"\n\"");
}

TEST(QuotePathTest, WithoutBackslashAndQuotesIsUnchanged) {
  EXPECT_EQ(quotePath("C:/a b", false), "C:/a b");
}

TEST(QuotePathTest, EmptyPathInQuotesIsTwoQuotes) {
  EXPECT_EQ(quotePath("", true), "\"\"");
}

TEST(JsonPathArrayTest, WritesAnArrayOfQuotedPaths) {
  EXPECT_EQ(jsonPathArray({}), "[]");
  EXPECT_EQ(jsonPathArray({"C:\\a"}), "[\"C:\\\\a\"]");
  EXPECT_EQ(jsonPathArray({"", "b"}), "[\"\",\"b\"]");
}

TEST(EscapedPathListTest, EscapesBackslashAndColonAndJoinsByColon) {
  EXPECT_EQ(escapedPathList({}), "");
  EXPECT_EQ(escapedPathList({"C:\\a"}), "C\\:\\\\a");
  EXPECT_EQ(escapedPathList({"a:b", "c"}), "a\\:b:c");
  EXPECT_EQ(escapedPathList({"", "c"}), ":c");
}

TEST(FileUrlTest, TurnsBackslashesAndEncodesNothing) {
  EXPECT_EQ(fileUrl("C:\\a b"), "file://C:/a b");
  EXPECT_EQ(fileUrl(""), "file://");
}

TEST(XmlEscapeTest, EscapesAmpersandAndAnglesOnly) {
  EXPECT_EQ(xmlEscape("<a&b>"), "&lt;a&amp;b&gt;");
  EXPECT_EQ(xmlEscape("say \"hi\" 'you'"), "say \"hi\" 'you'");
  EXPECT_EQ(xmlEscape("?a=1&b=2"), "?a=1&amp;b=2");
  EXPECT_EQ(xmlEscape(""), "");
}

}  // namespace
}  // namespace Vantrel::Web
