// Resets what the process caches, so that each test case starts as a freshly loaded library does.
// Called by tests only, while no other thread uses the service client.
#pragma once

#include <string>

namespace Vantrel::Web {

// Forgets the directories, the executable's path, the service's address and the launch wait. A text
// that is not empty takes the place of what would be found.
void resetServiceCaches(const std::string& appDataDirectory = {},
                        const std::string& executablePath = {});

}  // namespace Vantrel::Web
