// What finding and starting the desktop client asks of the platform.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/ov_process.h"

namespace Vantrel::Web {

// Writes the user's local application data directory as UTF-8. Negative on failure: the platform's
// result. May throw std::runtime_error if the name cannot be converted.
int32_t localAppDataDirectory(std::string* directory);

// A process that we started. Its handles are closed with the object; the process runs on.
class StartedProcess {
 public:
  StartedProcess();
  ~StartedProcess();
  StartedProcess(const StartedProcess&) = delete;
  StartedProcess& operator=(const StartedProcess&) = delete;

  // Starts the executable at `path`, which is also the whole command text, without quotes,
  // arguments or inherited handles, and without a console window. 0 or a code.
  ov_rc start(const std::string& path);

  ov_process record;
};

// Lets a process take the foreground. 0 or a code.
ov_rc allowForeground(int32_t processId);

}  // namespace Vantrel::Web
