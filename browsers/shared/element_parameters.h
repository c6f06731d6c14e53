// What both faces read from the parameters of the page's element. Any thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Vantrel::Web {

// Names and values are compared byte by byte.
using ElementParameters = std::map<std::string, std::string>;

// What an instance does with a drop.
enum class DropMode : int32_t { kNone = 0, kUpload = 1, kCallback = 2 };

// Empty for a parameter that is absent.
std::string parameterOf(const ElementParameters& parameters, const char* name);

// Whether the parameter is exactly `wanted`.
bool parameterIs(const ElementParameters& parameters, const char* name, const char* wanted);

// Milliseconds of `vantrel-launch-wait-timeout-ms`; the default when its text is no number.
int32_t launchWaitOf(const ElementParameters& parameters);

// The drop mode that `drop-mode` names.
DropMode dropModeOf(const ElementParameters& parameters);

}  // namespace Vantrel::Web
