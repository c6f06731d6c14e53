#include "threads/system_exception.h"

#include "runtime/ov_errors.h"

namespace Vantrel::Web {

std::string describeSystemError(std::string_view what, int32_t code) {
  char text[4096] = "";
  ov_platform_errstr(code, text, sizeof text);
  std::string message(what);
  message.append(text).append(" (").append(std::to_string(code)).append(")");
  return message;
}

}  // namespace Vantrel::Web
