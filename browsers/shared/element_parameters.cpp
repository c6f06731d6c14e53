#include "browsers/shared/element_parameters.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "service/launch.h"

namespace Vantrel::Web {

std::string parameterOf(const ElementParameters& parameters, const char* name) {
  const auto found = parameters.find(name);
  return found == parameters.end() ? std::string() : found->second;
}

bool parameterIs(const ElementParameters& parameters, const char* name, const char* wanted) {
  return parameterOf(parameters, name) == wanted;
}

int32_t launchWaitOf(const ElementParameters& parameters) {
  using Limits = std::numeric_limits<int32_t>;
  const std::string text = parameterOf(parameters, "vantrel-launch-wait-timeout-ms");
  const long number = std::strtol(text.c_str(), nullptr, 10);
  if (number == 0 && text != "0") return kDefaultLaunchTimeoutMs;
  return static_cast<int32_t>(std::clamp<long>(number, Limits::min(), Limits::max()));
}

DropMode dropModeOf(const ElementParameters& parameters) {
  const std::string text = parameterOf(parameters, "drop-mode");
  if (text == "upload") return DropMode::kUpload;
  return text == "callback" ? DropMode::kCallback : DropMode::kNone;
}

}  // namespace Vantrel::Web
