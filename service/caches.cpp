#include "service/caches.h"

#include "service/launch.h"
#include "service/testing.h"

namespace Vantrel::Web {

ServiceCaches& serviceCaches() {
  static ServiceCaches caches;
  return caches;
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
