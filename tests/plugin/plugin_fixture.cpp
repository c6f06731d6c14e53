#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {

std::string errorReply(std::string_view text) {
  return "{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\",\"user_message\":\"" +
         std::string(text) + "\"}}";
}

size_t PluginTest::logCount(std::string_view part) const {
  const std::string log = profile_.log();
  size_t count = 0;
  for (size_t at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) ++count;
  return count;
}

bool PluginTest::waitForCalls(const Host::PageReference& function, size_t count) {
  return host().pumpUntil([&] { return function->calls.size() >= count; });
}

void ServedTest::SetUp() {
  profile_.writeServiceUrl(server_.url() + "\n" + key_);
  start(kPluginLibrary);
}

std::string headerOf(const std::string& request, const std::string& name) {
  const size_t line = request.find("\r\n" + name + ": ");
  const size_t head = request.find("\r\n\r\n");
  if (line == std::string::npos || line > head) return "(none)";
  const size_t value = line + name.size() + 4;
  return request.substr(value, request.find("\r\n", value) - value);
}

}  // namespace Vantrel::Web
