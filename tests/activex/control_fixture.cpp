#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {

std::string errorReply(std::string_view text) {
  return "{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\",\"user_message\":\"" +
         std::string(text) + "\"}}";
}

size_t ControlTest::logCount(std::string_view part) const {
  const std::string log = profile_.log();
  size_t count = 0;
  for (size_t at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) ++count;
  return count;
}

bool ControlTest::logHasInOrder(std::initializer_list<std::string_view> parts) const {
  const std::string log = profile_.log();
  size_t at = 0;
  for (const std::string_view part : parts) {
    at = log.find(part, at);
    if (at == std::string::npos) {
      ADD_FAILURE() << "not in its place: " << part;
      return false;
    }
    at += part.size();
  }
  return true;
}

}  // namespace Vantrel::Web::ActiveX
