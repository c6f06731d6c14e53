#include <gtest/gtest.h>

#include "dialogs/file_types.h"
#include "tests/support/log_recorder.h"

namespace Vantrel::Web {
namespace {

using TestSupport::LogRecorder;

TEST(SuggestedExtensionTest, IsWhatStandsBehindTheLastDotOfTheName) {
  EXPECT_EQ(suggestedExtension("a.b.tar"), "tar");
  EXPECT_EQ(suggestedExtension("report.jpeg2"), "jpeg2");
  EXPECT_EQ(suggestedExtension("C:\\dir.d\\x.JPG"), "JPG");
  EXPECT_EQ(suggestedExtension(".profile"), "profile");
  EXPECT_EQ(suggestedExtension("größe.日本"), "日本");
  EXPECT_EQ(suggestedExtension("name."), "");
  EXPECT_EQ(suggestedExtension("C:/dir.d/name"), "");
  EXPECT_EQ(suggestedExtension("name"), "");
  EXPECT_EQ(suggestedExtension(""), "");
}

TEST(SuggestedExtensionTest, ANameThatStandsForSeveralFilesHasNone) {
  EXPECT_EQ(suggestedExtension("file.txt et al"), "");
  EXPECT_EQ(suggestedExtension("met already.txt"), "");
  EXPECT_EQ(suggestedExtension("metal.txt"), "txt");
}

TEST(SuggestedExtensionTest, OneThatIsTooLongIsToldAndNone) {
  const LogRecorder log;
  EXPECT_EQ(suggestedExtension("a." + std::string(254, 'x')), std::string(254, 'x'));
  EXPECT_EQ(log.lines("ERR").size(), 0u);
  EXPECT_EQ(suggestedExtension("a." + std::string(255, 'x')), "");
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{"_splitpath_s failed: 34"});
}

}  // namespace
}  // namespace Vantrel::Web
