#include "core/destination_consent.h"

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"

namespace Vantrel::Web {
namespace {

DestinationConsent selected(const std::string& path) {
  DestinationConsent consent;
  consent.setLastSelectedPath(path);
  return consent;
}

TEST(DestinationConsentTest, NothingIsAllowedWithoutASelection) {
  const DestinationConsent consent;
  EXPECT_FALSE(consent.isDestinationAllowed("C:/x"));
  EXPECT_FALSE(consent.isDestinationAllowed(""));
}

TEST(DestinationConsentTest, TheSelectedPathAndWhatLiesBelowItAreAllowed) {
  const DestinationConsent consent = selected("D:/out");
  EXPECT_TRUE(consent.isDestinationAllowed("D:/out"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:\\out"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:/out/sub"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:\\out\\sub"));
}

TEST(DestinationConsentTest, TheCharacterAtTheSelectedLengthDecides) {
  const DestinationConsent consent = selected("D:/out");
  EXPECT_FALSE(consent.isDestinationAllowed("D:/outer"));
  EXPECT_FALSE(consent.isDestinationAllowed("D:/ou"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:/abc"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:/abc/deep"));
}

TEST(DestinationConsentTest, TheFirstCharacterMustOccurSomewhereInTheSelection) {
  const DestinationConsent consent = selected("D:/out");
  EXPECT_FALSE(consent.isDestinationAllowed("E:/abc"));
  EXPECT_TRUE(consent.isDestinationAllowed("/xxxxx"));
  EXPECT_TRUE(consent.isDestinationAllowed("oxxxxx"));
}

TEST(DestinationConsentTest, AnotherFolderOfTheSameShapeIsAllowed) {
  const DestinationConsent consent = selected("C:/Users/me");
  EXPECT_TRUE(consent.isDestinationAllowed("C:/Data/xxx/y"));
  EXPECT_FALSE(consent.isDestinationAllowed("C:/Other"));
}

TEST(DestinationConsentTest, ATrailingSlashOfTheSelectionIsKept) {
  const DestinationConsent consent = selected("D:\\out\\");
  EXPECT_EQ(consent.lastSelectedPath(), "D:/out/");
  EXPECT_TRUE(consent.isDestinationAllowed("D:/out/"));
  EXPECT_FALSE(consent.isDestinationAllowed("D:/out"));
  EXPECT_FALSE(consent.isDestinationAllowed("D:/out/sub"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:/out//sub"));
}

TEST(DestinationConsentTest, ANewSelectionReplacesTheFormerAndIsLogged) {
  TestSupport::LogRecorder log;
  DestinationConsent consent = selected("C:\\first");
  consent.setLastSelectedPath("D:\\second");
  EXPECT_FALSE(consent.isDestinationAllowed("C:/first"));
  EXPECT_TRUE(consent.isDestinationAllowed("D:/second"));
  EXPECT_TRUE(log.has("DBG PlugIn::setLastSelectedPath() - C:/first")) << log.text();
  consent.clear();
  EXPECT_FALSE(consent.isDestinationAllowed("D:/second"));
}

}  // namespace
}  // namespace Vantrel::Web
