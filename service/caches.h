// What the process knows about the desktop client, behind one lock: every access holds `mutex`,
// which is never held across an exchange, a file or a registry read. Texts that are empty are not
// known.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "service/url.h"

namespace Vantrel::Web {

struct ServiceCaches {
  std::mutex mutex;
  std::string appDataDirectory;
  std::string baseDirectory;
  std::string executablePath;
  Url url;
  uint64_t urlClears = 0;  // counts clears, so that what was read before one is not stored after it
};

// The one set of the process.
ServiceCaches& serviceCaches();

}  // namespace Vantrel::Web
