#include "service/service_url.h"

#include <exception>
#include <mutex>

#include "runtime/ov_log.h"
#include "service/caches.h"
#include "service/file.h"
#include "service/locations.h"

namespace Vantrel::Web {

namespace {

// Reads the client's file into `url`, which is cleared.
void readUrl(Url& url) {
  const std::string path = vantrelUrlFile();
  OV_DEBUG("Reading Orvane Vantrel URL from %s", path.c_str());
  File file(path);
  file.open();
  const std::string text = file.read();
  if (text.empty()) {
    OV_DEBUG("Failed to read Orvane Vantrel URL from %s", path.c_str());
  } else {
    url.parse(text);
    OV_DEBUG("Read Orvane Vantrel URL: %s", url.url.c_str());
  }
  // The key is logged with every new address.
  vantrelUuid();
}

}  // namespace

Url vantrelUrl() {
  ServiceCaches& caches = serviceCaches();
  uint64_t clearsBefore = 0;
  Url url;
  try {
    {
      const std::lock_guard lock(caches.mutex);
      if (!caches.url.url.empty()) return caches.url;
      clearsBefore = caches.urlClears;
    }
    readUrl(url);
    const std::lock_guard lock(caches.mutex);
    if (caches.urlClears == clearsBefore) caches.url = url;
  } catch (const std::exception& error) {
    ov_err("Failed to get Vantrel URL: %s", error.what());
  }
  return url;
}

void clearVantrelUrl() {
  ServiceCaches& caches = serviceCaches();
  const std::lock_guard lock(caches.mutex);
  caches.url.clear();
  ++caches.urlClears;
}

}  // namespace Vantrel::Web
