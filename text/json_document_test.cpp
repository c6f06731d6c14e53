#include "text/json_document.h"

#include <gtest/gtest.h>

namespace Vantrel::Web {
namespace {

constexpr const char* kA[] = {"a", nullptr};
constexpr const char* kAB[] = {"a", "b", nullptr};
constexpr const char* kB[] = {"b", nullptr};

TEST(JsonDocumentTest, ReadsAStringBelowAPathOfKeys) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":{"b":"text"}})"));
  EXPECT_EQ(document.getString(kAB), "text");
  EXPECT_EQ(document.getString(kB), "");
}

TEST(JsonDocumentTest, ANumberReadsAsItsRawText) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":1.50})"));
  EXPECT_EQ(document.getString(kA), "1.50");
  ASSERT_TRUE(document.parse(R"({"a":123456789012345678901234567890})"));
  EXPECT_EQ(document.getString(kA), "123456789012345678901234567890");
  ASSERT_TRUE(document.parse(R"({"a":-0E+5})"));
  EXPECT_EQ(document.getString(kA), "-0E+5");
}

TEST(JsonDocumentTest, OtherTypesAndMissingKeysReadAsEmpty) {
  for (const char* const value : {"null", "true", "false", "[]", "{}", "[1]"}) {
    JsonDocument document;
    ASSERT_TRUE(document.parse(std::string("{\"a\":") + value + "}"));
    EXPECT_EQ(document.getString(kA), "") << value;
    EXPECT_NE(document.get(kA), nullptr) << value;
    EXPECT_EQ(document.getString(kB), "") << value;
    EXPECT_EQ(document.get(kB), nullptr) << value;
  }
}

TEST(JsonDocumentTest, OnlyTheLiteralIsTrue) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":true})"));
  EXPECT_TRUE(document.isTrue(kA));
  EXPECT_FALSE(document.isTrue(kB));
  for (const char* const value : {"\"true\"", "1", "false", "null", "[true]"}) {
    ASSERT_TRUE(document.parse(std::string("{\"a\":") + value + "}"));
    EXPECT_FALSE(document.isTrue(kA)) << value;
  }
}

TEST(JsonDocumentTest, ReadsBelowAGivenBase) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":[{"b":"in"}],"b":"top"})"));
  const yajl_val array = document.get(kA);
  ASSERT_TRUE(YAJL_IS_ARRAY(array));
  ASSERT_EQ(array->u.array.len, 1u);
  EXPECT_EQ(document.getString(kB, array->u.array.values[0]), "in");
  EXPECT_EQ(document.getString(kB), "top");
}

TEST(JsonDocumentTest, TheFirstOfEqualKeysIsTaken) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":"first","a":"second"})"));
  EXPECT_EQ(document.getString(kA), "first");
}

TEST(JsonDocumentTest, HasErrorSeesATopLevelErrorOfAnyType) {
  JsonDocument document;
  for (const char* const value : {"null", "true", "0", "\"\"", "{}", "[]"}) {
    ASSERT_TRUE(document.parse(std::string("{\"error\":") + value + "}"));
    EXPECT_TRUE(document.hasError()) << value;
  }
  ASSERT_TRUE(document.parse(R"({"a":{"error":1}})"));
  EXPECT_FALSE(document.hasError());
  ASSERT_TRUE(document.parse(R"(["error"])"));
  EXPECT_FALSE(document.hasError());
}

TEST(JsonDocumentTest, AFailedParseGivesATextAndNoTree) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":"b"})"));
  EXPECT_EQ(document.errorText(), "");
  EXPECT_FALSE(document.parse("{\"a\":"));
  EXPECT_NE(document.errorText(), "");
  EXPECT_EQ(document.getString(kA), "");
  EXPECT_FALSE(document.hasError());
  EXPECT_FALSE(document.parse(""));
  EXPECT_NE(document.errorText(), "");
}

TEST(JsonDocumentTest, ParsingAgainFreesTheFirstTree) {
  JsonDocument document;
  ASSERT_TRUE(document.parse(R"({"a":"first"})"));
  ASSERT_TRUE(document.parse(R"({"a":"second"})"));
  EXPECT_EQ(document.getString(kA), "second");
}

TEST(JsonDocumentTest, TheTextEndsAtItsFirstNul) {
  JsonDocument document;
  EXPECT_TRUE(document.parse(std::string("{\"a\":1}\0garbage", 15)));
  EXPECT_EQ(document.getString(kA), "1");
}

TEST(JsonDocumentTest, CommentsAreAccepted) {
  JsonDocument document;
  EXPECT_TRUE(document.parse("/* \" [[ */ {\"a\": // \"{{\n 1}"));
  EXPECT_EQ(document.getString(kA), "1");
}

std::string nested(int depth, const std::string& before = "", const std::string& behind = "") {
  const auto count = static_cast<size_t>(depth);
  return before + std::string(count, '[') + std::string(count, ']') + behind;
}

TEST(JsonDocumentTest, NestingUpToTheLimitParses) {
  JsonDocument document;
  EXPECT_TRUE(document.parse(nested(JsonDocument::kMaxDepth)));
}

TEST(JsonDocumentTest, DeeperNestingIsAParseError) {
  JsonDocument document;
  EXPECT_FALSE(document.parse(nested(JsonDocument::kMaxDepth + 1)));
  EXPECT_NE(document.errorText().find("nested too deeply"), std::string::npos);
  EXPECT_FALSE(document.parse(nested(1000000)));
  std::string objects;
  for (int i = 0; i < 100000; ++i) objects += "{\"a\":";
  EXPECT_FALSE(document.parse(objects + "1" + std::string(100000, '}')));
}

TEST(JsonDocumentTest, BracketsInStringsDoNotCount) {
  JsonDocument document;
  EXPECT_TRUE(document.parse("[\"" + std::string(5000, '[') + "\",\"\\\"" + std::string(5000, '{') +
                             "\",\"\\\\\",1]"));
}

TEST(JsonDocumentTest, ACommentHidesNoNesting) {
  JsonDocument document;
  EXPECT_FALSE(document.parse(nested(100000, "/* \" */")));
  EXPECT_FALSE(document.parse(nested(100000, "// \"\n")));
  EXPECT_FALSE(document.parse(nested(100000, "/**/")));
  EXPECT_FALSE(document.parse(nested(100000, "/*/ \" */")));
}

TEST(JsonDocumentTest, UnfinishedTextsAreOnlyParseErrors) {
  JsonDocument document;
  for (const char* const text : {"\"", "\"\\", "/", "/*", "//", "/* \"", "[\"\\\"", "]", "{{"}) {
    EXPECT_FALSE(document.parse(text)) << text;
  }
}

}  // namespace
}  // namespace Vantrel::Web
