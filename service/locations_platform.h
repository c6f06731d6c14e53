// The platform's part in finding the desktop client.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

// Writes the user's local application data directory as UTF-8. Negative on failure: the platform's
// result. May throw std::runtime_error if the name cannot be converted.
int32_t localAppDataDirectory(std::string* directory);

}  // namespace Vantrel::Web
