#include "text/error_reply.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Vantrel::Web {
namespace {

TEST(ErrorReplyTest, HasTheOneForm) {
  EXPECT_EQ(jsonErrorReply("text"),
            "{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\","
            "\"user_message\":\"text\"}}");
}

TEST(ErrorReplyTest, TheTextGoesInUnescaped) {
  EXPECT_NE(jsonErrorReply("C:\\a \"b\" %s").find("\"C:\\a \"b\" %s\"}}"), std::string::npos);
}

TEST(ErrorReplyTest, AnExceptionStandsAloneOrBehindAPrefix) {
  const std::runtime_error exception("100% broken %n");
  EXPECT_EQ(exceptionJsonErrorReply(exception), jsonErrorReply("100% broken %n"));
  EXPECT_EQ(exceptionJsonErrorReply(exception, "Error"), jsonErrorReply("Error: 100% broken %n"));
  EXPECT_EQ(logJsonErrorReply("x"), jsonErrorReply("x"));
}

}  // namespace
}  // namespace Vantrel::Web
