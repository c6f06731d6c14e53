#include "service/caches.h"

#include "service/launch.h"
#include "service/testing.h"

namespace Vantrel::Web {

namespace {

// Not local to its function: the guard of a local static makes the compiler's thread library keep a
// record of the first thread that comes by, two handles with it, beyond the unload of the module.
ServiceCaches processCaches;

}  // namespace

ServiceCaches& serviceCaches() {
  return processCaches;
}

void resetServiceCaches(const std::string& appDataDirectory, const std::string& executablePath) {
  ServiceCaches& caches = serviceCaches();
  {
    const std::lock_guard lock(caches.mutex);
    caches.appDataDirectory = appDataDirectory;
    caches.baseDirectory.clear();
    caches.executablePath = executablePath;
    caches.url.clear();
  }
  setLaunchTimeout(kDefaultLaunchTimeoutMs);
}

}  // namespace Vantrel::Web
