#include "browsers/gecko/variant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>

#include "tests/support/fake_browser.h"

namespace Vantrel::Web::Gecko {
namespace {

class VariantTest : public testing::Test {
 protected:
  // What the browser gets of a text; it owns the characters.
  std::string roundTrip(const std::string& text) {
    NPVariant variant;
    stringToVariant(text, &variant);
    EXPECT_EQ(variant.type, NPVariantType_String);
    const NPString string = variant.value.stringValue;
    std::string result(string.UTF8Characters, string.UTF8Length);
    EXPECT_EQ(string.UTF8Characters[string.UTF8Length], '\0');
    browserFuncs.memfree(const_cast<char*>(string.UTF8Characters));
    return result;
  }

  FakeBrowser browser_;
};

TEST_F(VariantTest, BooleansAndTheTwoWordsAreBooleanLike) {
  EXPECT_TRUE(isBooleanLike(FakeBrowser::boolean(false)));
  EXPECT_TRUE(isBooleanLike(browser_.text("true")));
  EXPECT_TRUE(isBooleanLike(browser_.text("false")));
  EXPECT_TRUE(isBooleanLike(browser_.text(std::string("true\0x", 6))));
  for (const char* const text : {"", "True", "truex", "tru", "1"}) {
    EXPECT_FALSE(isBooleanLike(browser_.text(text))) << text;
  }
  EXPECT_FALSE(isBooleanLike(FakeBrowser::number(1)));
  EXPECT_FALSE(isBooleanLike(FakeBrowser::number(1.0)));
  EXPECT_FALSE(isBooleanLike(browser_.object()));
  EXPECT_FALSE(isBooleanLike({NPVariantType_Void, {}}));
  EXPECT_FALSE(isBooleanLike({NPVariantType_Null, {}}));
}

TEST_F(VariantTest, AWordInsideALargerBufferIsReadByItsLength) {
  NPVariant variant = browser_.text("trueish");
  variant.value.stringValue.UTF8Length = 4;
  EXPECT_TRUE(isBooleanLike(variant));
  EXPECT_TRUE(toBool(variant));
}

TEST_F(VariantTest, OnlyTrueIsTrue) {
  EXPECT_TRUE(toBool(FakeBrowser::boolean(true)));
  EXPECT_FALSE(toBool(FakeBrowser::boolean(false)));
  EXPECT_TRUE(toBool(browser_.text("true")));
  EXPECT_FALSE(toBool(browser_.text("false")));
  EXPECT_FALSE(toBool(browser_.text("TRUE")));
  EXPECT_FALSE(toBool(FakeBrowser::number(1)));
}

TEST_F(VariantTest, TextEndsAtItsFirstNulUnlessItsLengthCounts) {
  const NPVariant variant = browser_.text(std::string("ab\0cd", 5));
  EXPECT_EQ(textOf(variant), "ab");
  EXPECT_EQ(countedTextOf(variant), std::string("ab\0cd", 5));
  EXPECT_EQ(textOf(browser_.text("")), "");
  EXPECT_EQ(countedTextOf(FakeBrowser::number(5)), "");
}

TEST_F(VariantTest, NullCharactersReadAsEmptyWhateverTheirLength) {
  NPVariant variant = {NPVariantType_String, {}};
  variant.value.stringValue = {nullptr, 5};
  EXPECT_EQ(textOf(variant), "");
  EXPECT_EQ(countedTextOf(variant), "");
  EXPECT_FALSE(isBooleanLike(variant));
}

TEST_F(VariantTest, NumbersGiveTheirLow32BitsTruncatedTowardZero) {
  const struct {
    double number;
    uint32_t low;
  } kRows[] = {
      {0.0, 0},
      {1.9, 1},
      {-1.9, 0xFFFFFFFFu},
      {-0.5, 0},
      {4294967295.0, 0xFFFFFFFFu},
      {4294967296.0, 0},
      {4294967297.5, 1},
      {9007199254740991.0, 0xFFFFFFFFu},
      {-9223372036854775808.0, 0},
      {9223372036854775808.0, 0},
      {1e300, 0},
      {std::numeric_limits<double>::infinity(), 0},
      {-std::numeric_limits<double>::infinity(), 0},
      {std::numeric_limits<double>::quiet_NaN(), 0},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(low32Of(FakeBrowser::number(row.number)), row.low) << row.number;
  }
  EXPECT_EQ(low32Of(FakeBrowser::number(-1)), 0xFFFFFFFFu);
  EXPECT_EQ(low32Of(FakeBrowser::number(7)), 7u);
}

TEST_F(VariantTest, OnlyIntegersAndDoublesAreNumbers) {
  EXPECT_TRUE(matches(Argument::kNumber, FakeBrowser::number(1)));
  EXPECT_TRUE(matches(Argument::kNumber, FakeBrowser::number(1.5)));
  EXPECT_FALSE(matches(Argument::kNumber, browser_.text("1")));
  EXPECT_FALSE(matches(Argument::kNumber, FakeBrowser::boolean(true)));
}

TEST_F(VariantTest, TextForTheBrowserIsACopyWithAClosingNul) {
  EXPECT_EQ(roundTrip("text"), "text");
  EXPECT_EQ(roundTrip(""), "");
  EXPECT_EQ(roundTrip(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST_F(VariantTest, ANullTextHasNullCharacters) {
  NPVariant variant;
  stringToVariant(nullptr, &variant);
  EXPECT_EQ(variant.type, NPVariantType_String);
  EXPECT_EQ(variant.value.stringValue.UTF8Characters, nullptr);
  EXPECT_EQ(variant.value.stringValue.UTF8Length, 0u);
}

TEST_F(VariantTest, WithoutMemoryTheTextIsEmpty) {
  browser_.outOfMemory = true;
  NPVariant variant;
  stringToVariant(std::string("text"), &variant);
  EXPECT_EQ(variant.type, NPVariantType_String);
  EXPECT_EQ(variant.value.stringValue.UTF8Characters, nullptr);
  EXPECT_EQ(variant.value.stringValue.UTF8Length, 0u);
}

TEST_F(VariantTest, ATextThatWasBuiltInPlaceIsHandedOverOnceOrGivenBack) {
  NPVariant variant;
  {
    VariantRoom room;
    room.take(1000);
    std::string("text").copy(room.take(4), 4);
    EXPECT_EQ(browser_.blocks, 1);
    room.handOver(&variant);
  }
  EXPECT_EQ(variant.type, NPVariantType_String);
  EXPECT_STREQ(variant.value.stringValue.UTF8Characters, "text");
  EXPECT_EQ(variant.value.stringValue.UTF8Length, 4u);
  EXPECT_EQ(browser_.blocks, 1);
  browserFuncs.memfree(const_cast<char*>(variant.value.stringValue.UTF8Characters));
  { VariantRoom().take(5); }
  EXPECT_EQ(browser_.blocks, 0);
}

TEST_F(VariantTest, ATextThatTheBrowserHasNoRoomForIsNotBuilt) {
  VariantRoom room;
  EXPECT_THROW(room.take(UINT32_MAX), std::bad_alloc);
  browser_.outOfMemory = true;
  EXPECT_THROW(room.take(1), std::bad_alloc);
}

TEST_F(VariantTest, AnArgumentIsOfAKind) {
  using enum Argument;
  EXPECT_TRUE(matches(kText, browser_.text("")));
  EXPECT_FALSE(matches(kNonEmptyText, browser_.text("")));
  EXPECT_TRUE(matches(kNonEmptyText, browser_.text("a")));
  EXPECT_FALSE(matches(kText, browser_.object()));
  EXPECT_TRUE(matches(kObject, browser_.object()));
  EXPECT_FALSE(matches(kObject, browser_.text("a")));
  EXPECT_TRUE(matches(kBoolean, browser_.text("true")));
  EXPECT_FALSE(matches(kBoolean, FakeBrowser::number(1)));
  EXPECT_TRUE(matches(kAnything, NPVariant{NPVariantType_Void, {}}));
}

}  // namespace
}  // namespace Vantrel::Web::Gecko
