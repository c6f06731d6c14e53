#include <gtest/gtest.h>

#include "tools/client/json_text.h"
#include "tools/client/json_tree.h"

namespace Vantrel::StandIn {
namespace {

TEST(JsonQuotedTest, EveryByteValueGivesJsonThatParses) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string text = {'a', static_cast<char>(byte), 'b'};
    std::string problem;
    EXPECT_TRUE(parseJson("[" + jsonQuoted(text) + "]", problem)) << byte << ": " << problem;
  }
}

TEST(JsonQuotedTest, WhatMustBeEscapedIs) {
  EXPECT_EQ(jsonQuoted(std::string_view("\"\\/\0\x1f\x7f", 6)),
            "\"\\\"\\\\/\\u0000\\u001f\\u007f\"");
}

TEST(JsonQuotedTest, WellFormedTextStaysAsItIs) {
  std::string text = "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF \xED\x9F\xBF";
  EXPECT_EQ(jsonQuoted(text), "\"" + text + "\"");
}

TEST(JsonQuotedTest, IllFormedBytesAreReplacedOneByOne) {
  const std::string r = "\xEF\xBF\xBD";
  EXPECT_EQ(jsonQuoted("\x80"), "\"" + r + "\"");
  EXPECT_EQ(jsonQuoted("\xC0\xAF"), "\"" + r + r + "\"");                  // overlong
  EXPECT_EQ(jsonQuoted("\xE0\x80\x80"), "\"" + r + r + r + "\"");          // overlong
  EXPECT_EQ(jsonQuoted("\xED\xA0\x80"), "\"" + r + r + r + "\"");          // a surrogate
  EXPECT_EQ(jsonQuoted("\xF0\x80\x80\x80"), "\"" + r + r + r + r + "\"");  // overlong
  EXPECT_EQ(jsonQuoted("\xF4\x90\x80\x80"), "\"" + r + r + r + r + "\"");  // above U+10FFFF
  EXPECT_EQ(jsonQuoted("\xE2\x82"), "\"" + r + r + "\"");                  // cut off
}

TEST(JsonObjectTest, MembersStandInTheirOrder) {
  JsonObject object;
  EXPECT_EQ(object.text(), "{}");
  object.add("a", "x");
  object.add("b", std::int64_t{-7});
  object.addRaw("c", "[]");
  EXPECT_EQ(object.text(), R"({"a":"x","b":-7,"c":[]})");
}

TEST(JsonTreeTest, PathsAreFollowed) {
  std::string problem;
  JsonTree tree = parseJson(R"({"a":{"b":"x","n":17,"l":[1,2]},"t":true})", problem);
  ASSERT_TRUE(tree);
  EXPECT_EQ(jsonTextAt(tree.get(), {"a", "b"}), "x");
  EXPECT_EQ(jsonTextAt(tree.get(), {"a", "n"}), "17");
  EXPECT_EQ(jsonTextAt(tree.get(), {"t"}), "");
  EXPECT_EQ(jsonTextAt(tree.get(), {"a", "b", "c"}), "");
  EXPECT_EQ(jsonArrayAt(tree.get(), {"a", "l"}).size(), 2U);
  EXPECT_TRUE(jsonArrayAt(tree.get(), {"a"}).empty());
  EXPECT_EQ(jsonAt(tree.get(), {"x"}), nullptr);
}

TEST(JsonTreeTest, AnythingElseIsRefusedWithAReason) {
  for (const std::string& text : {std::string(""), std::string("{"), std::string("{\"a\":}"),
                                  std::string("nonsense"), std::string("{}\0{", 4)}) {
    std::string problem;
    EXPECT_FALSE(parseJson(text, problem)) << text;
    EXPECT_NE(problem, "") << text;
  }
}

TEST(JsonTreeTest, NestingHasALimit) {
  auto nested = [](size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  std::string problem;
  EXPECT_TRUE(parseJson(nested(kMostJsonDepth), problem));
  EXPECT_FALSE(parseJson(nested(kMostJsonDepth + 1), problem));
  EXPECT_EQ(problem, "nested too deep");
  std::string brackets = "[\"\\\"" + std::string(size_t{2} * kMostJsonDepth, '[') + "\"]";
  EXPECT_TRUE(parseJson(brackets, problem));
}

}  // namespace
}  // namespace Vantrel::StandIn
