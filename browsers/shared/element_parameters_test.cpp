#include "browsers/shared/element_parameters.h"

#include <gtest/gtest.h>

#include <limits>

#include "browsers/shared/page_events.h"
#include "service/launch.h"

namespace Vantrel::Web {
namespace {

int32_t waitOf(const std::string& text) {
  return launchWaitOf({{"vantrel-launch-wait-timeout-ms", text}});
}

TEST(ElementParametersTest, TheLaunchWaitIsANumberOrTheDefault) {
  EXPECT_EQ(launchWaitOf({}), kDefaultLaunchTimeoutMs);
  for (const char* const text : {"", "abc", "00", " ", "-0", "+0"}) {
    EXPECT_EQ(waitOf(text), kDefaultLaunchTimeoutMs) << text;
  }
  EXPECT_EQ(waitOf("0"), 0);
  EXPECT_EQ(waitOf("-5"), -5);
  EXPECT_EQ(waitOf(" 12 ms"), 12);
  EXPECT_EQ(waitOf("99999999999999999999"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(waitOf("-99999999999999999999"), std::numeric_limits<int32_t>::min());
}

TEST(ElementParametersTest, TheDropModeIsAnExactWord) {
  EXPECT_EQ(dropModeOf({}), DropMode::kNone);
  EXPECT_EQ(dropModeOf({{"drop-mode", "upload"}}), DropMode::kUpload);
  EXPECT_EQ(dropModeOf({{"drop-mode", "callback"}}), DropMode::kCallback);
  for (const char* const text : {"", "Upload", "upload ", "callbacks"}) {
    EXPECT_EQ(dropModeOf({{"drop-mode", text}}), DropMode::kNone) << text;
  }
}

TEST(ElementParametersTest, ASwitchIsOnForItsExactWord) {
  const ElementParameters parameters = {{"a", "true"}, {"b", "TRUE"}, {"c", ""}};
  EXPECT_TRUE(parameterIs(parameters, "a", "true"));
  EXPECT_FALSE(parameterIs(parameters, "b", "true"));
  EXPECT_FALSE(parameterIs(parameters, "c", "true"));
  EXPECT_FALSE(parameterIs(parameters, "A", "true"));
  EXPECT_EQ(parameterOf(parameters, "missing"), "");
}

TEST(PageEventsTest, EventsHaveFixedNames) {
  EXPECT_STREQ(pageEventName(PageEvent::kDrop), "drop");
  EXPECT_STREQ(pageEventName(PageEvent::kDropEx), "dropex");
  EXPECT_STREQ(pageEventName(PageEvent::kTransfer), "transfer");
  EXPECT_STREQ(pageEventName(PageEvent::kDragLeave), "dragleave");
  EXPECT_STREQ(pageEventName(PageEvent::kDragOver), "dragover");
}

}  // namespace
}  // namespace Vantrel::Web
