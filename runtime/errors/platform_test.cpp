// Errors as the platform tells them, against what our platform's own form gives.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "runtime/errors/last_code.h"
#include "runtime/errors/platform.h"
#include "runtime/ov_errors.h"

namespace {

TEST(PlatformErrorsTest, EndOfThePrivateRangeGoesToThePlatform) {
  char text[512] = "";
  for (const int32_t code : {28671, 28711}) {
    char direct[512] = "";
    const ov_rc expected = ov::system_message(code, direct, sizeof direct);
    EXPECT_EQ(expected, ov_platform_errstr(code, text, sizeof text));
    EXPECT_STREQ(std::string(direct).substr(0, std::string(direct).find("\r\n")).c_str(), text);
  }
}

TEST(PlatformErrorsTest, PlatformMessageLosesItsLineEnd) {
  char raw[512] = "";
  ASSERT_EQ(0, ov::system_message(2, raw, sizeof raw));
  const std::string message = raw;
  ASSERT_TRUE(message.ends_with("\r\n")) << message;
  char text[512] = "";
  EXPECT_EQ(0, ov_platform_errstr(2, text, sizeof text));
  EXPECT_EQ(message.substr(0, message.size() - 2), text);
}

TEST(PlatformErrorsTest, LastCodeIsTheLastErrorOrElseErrnoAndNeverZero) {
  ov::set_last_error(5);
  errno = 2;
  EXPECT_EQ(5, ov::last_code());
  ov::set_last_error(0);
  errno = 2;
  EXPECT_EQ(2, ov::last_code());
  errno = 0;
  EXPECT_EQ(OV_EINVAL, ov::last_code());
}

}  // namespace
