#include "text/error_reply.h"

#include "runtime/ov_log.h"

namespace Vantrel::Web {

std::string jsonErrorReply(std::string_view text) {
  std::string reply =
      R"({"error":{"code":-1,"internal_message":"Invalid request","user_message":")";
  return reply.append(text).append(R"("}})");
}

std::string logJsonErrorReply(const std::string& text) {
  ov_err("%s", text.c_str());
  return jsonErrorReply(text);
}

std::string exceptionJsonErrorReply(const std::exception& exception) {
  return logJsonErrorReply(exception.what());
}

std::string exceptionJsonErrorReply(const std::exception& exception, std::string_view prefix) {
  return logJsonErrorReply(std::string(prefix) + ": " + exception.what());
}

}  // namespace Vantrel::Web
