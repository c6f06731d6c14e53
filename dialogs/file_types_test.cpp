#include "dialogs/file_types.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "text/error_texts.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;

TEST(FileTypesTest, AnEmptyTextAndAnEmptyArrayAreNoFilters) {
  EXPECT_TRUE(parseFileTypes("").empty());
  EXPECT_TRUE(parseFileTypes("[]").empty());
}

TEST(FileTypesTest, NamesAndExtensionsKeepOrderAndSpelling) {
  const auto filters = parseFileTypes(
      R"([{"filter_name":"Bilder äöü","extensions":["JPG","png"]},
          {"extensions":["tar.gz",""],"filter_name":"","more":[1]}])");
  ASSERT_EQ(filters.size(), 2u);
  EXPECT_EQ(filters[0].name, "Bilder äöü");
  EXPECT_THAT(filters[0].extensions, ElementsAre("JPG", "png"));
  EXPECT_EQ(filters[1].name, "");
  EXPECT_THAT(filters[1].extensions, ElementsAre("tar.gz", ""));
}

class BadFileTypesTest : public testing::TestWithParam<const char*> {};

TEST_P(BadFileTypesTest, IsRefusedWithTheOneText) {
  try {
    parseFileTypes(GetParam());
    ADD_FAILURE() << "accepted";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), kErrorParsingFileTypes);
  }
}

INSTANTIATE_TEST_SUITE_P(, BadFileTypesTest,
                         testing::Values("x", "[", " ", "{}", "\"\"", "null", "[1]", "[[]]", "[{}]",
                                         R"([{"filter_name":1,"extensions":["a"]}])",
                                         R"([{"extensions":["a"]}])", R"([{"filter_name":"n"}])",
                                         R"([{"filter_name":"n","extensions":"a"}])",
                                         R"([{"filter_name":"n","extensions":[]}])",
                                         R"([{"filter_name":"n","extensions":["a",1]}])",
                                         R"([{"filter_name":"n","extensions":["a"]},null])"));

TEST(FileTypesTest, ASpecificationNamesEveryExtension) {
  EXPECT_EQ(filterSpec({"Images", {"jpg", "png"}}), "*.jpg;*.png");
  EXPECT_EQ(filterSpec({"One", {"txt"}}), "*.txt");
  EXPECT_EQ(filterSpec({"Empty", {""}}), "*.");
  EXPECT_EQ(filterSpec({"None", {}}), "");
}

TEST(FileTypesTest, AFilterIsFoundByTheWholeExtensionToTheByte) {
  const std::vector<FileTypeFilter> filters = {{"a", {"jpg", "png"}}, {"b", {"txt", "png"}}};
  EXPECT_EQ(findFilterIndex(filters, "png"), 0);
  EXPECT_EQ(findFilterIndex(filters, "txt"), 1);
  EXPECT_EQ(findFilterIndex(filters, "TXT"), -1);
  EXPECT_EQ(findFilterIndex(filters, "tx"), -1);
  EXPECT_EQ(findFilterIndex(filters, ""), -1);
  EXPECT_EQ(findFilterIndex({}, "png"), -1);
}

TEST(FileTypesTest, ASaveDialogBeginsWithTheFilterOfTheExtensionOrTheFirst) {
  const std::vector<FileTypeFilter> filters = {{"a", {"txt"}}, {"b", {"jpg"}}};
  EXPECT_EQ(initialFilter(filters, "jpg"), 2u);
  EXPECT_EQ(initialFilter(filters, "txt"), 1u);
  EXPECT_EQ(initialFilter(filters, "JPG"), 1u);
  EXPECT_EQ(initialFilter(filters, ""), 1u);
  EXPECT_EQ(initialFilter({{"a", {"x"}}, {"b", {""}}}, ""), 1u);
  EXPECT_EQ(initialFilter({}, "jpg"), 1u);
}

TEST(FileTypesTest, DefaultFiltersOfferAnExtensionOfOneToFourBytes) {
  EXPECT_EQ(filterLines(defaultFilters("tar")), "tar files\n*.tar\nAll files\n*.*\n");
  EXPECT_EQ(filterLines(defaultFilters("c")), "c files\n*.c\nAll files\n*.*\n");
  EXPECT_EQ(filterLines(defaultFilters("jpeg")), "jpeg files\n*.jpeg\nAll files\n*.*\n");
  EXPECT_EQ(filterLines(defaultFilters("jpeg2")), "All files\n*.*\n");
  EXPECT_EQ(filterLines(defaultFilters("ééé")), "All files\n*.*\n");
  EXPECT_EQ(filterLines(defaultFilters("")), "All files\n*.*\n");
}

TEST(FileTypesTest, LinesAreNameAndSpecificationOfEach) {
  EXPECT_EQ(filterLines({}), "");
  EXPECT_EQ(filterLines({{"Images", {"jpg", "png"}}, {"", {"txt"}}}),
            "Images\n*.jpg;*.png\n\n*.txt\n");
}

TEST(FileTypesTest, NoTextOfAPageMakesALineOfItsOwn) {
  const auto filters =
      parseFileTypes(R"([{"filter_name":"a\nb\u0000c","extensions":["t\nx","\n"]}])");
  EXPECT_EQ(filters.at(0).name, "a\nb");
  EXPECT_EQ(filterLines(filters), "a b\n*.t x;*. \n");
  EXPECT_EQ(filterLines({{std::string("a\0b", 3), {std::string("\0", 1)}}}), "a b\n*. \n");
  EXPECT_EQ(filterLines(defaultFilters("a\n")), "a  files\n*.a \nAll files\n*.*\n");
}

}  // namespace
}  // namespace Vantrel::Web
