#include "service/locations.h"

#include <exception>

#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"
#include "service/file.h"
#include "service/platform.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

namespace {

constexpr char kInstallKey[] = "SOFTWARE\\Orvane\\Orvane Vantrel\\v2";
constexpr char kInstallValue[] = "InstallDir";
constexpr char kInstallSubdirectory[] = "bin";
constexpr char kExecutableName[] = "orvanevantrel.exe";
constexpr char kDataDirectorySuffix[] = "\\Orvane\\Orvane Vantrel";
constexpr char kUrlFile[] = "/var/run/http.uri";
constexpr char kProcessIdFile[] = "/var/run/process.pid";
constexpr size_t kPathSize = 520;

// Not local to its function: the guard of a local static makes the compiler's thread library keep a
// record of the first thread that comes by, two handles with it, beyond the unload of the module.
// Destroyed then: the threads that ask here were joined, and a dialog under way asks nothing.
ServiceCaches processCaches;

std::string cachedText(std::string ServiceCaches::*member) {
  ServiceCaches& caches = serviceCaches();
  const std::lock_guard lock(caches.mutex);
  return caches.*member;
}

void cacheText(std::string ServiceCaches::*member, const std::string& text) {
  ServiceCaches& caches = serviceCaches();
  const std::lock_guard lock(caches.mutex);
  caches.*member = text;
}

std::string readFile(const std::string& path) {
  File file(path);
  file.open();
  return file.read();
}

// Reads the directory that an installation wrote and appends the subdirectory of the executable,
// with no separator: the value ends in one. Empty when there is no installation.
void readInstallDirectory(void* hive, const char* missingText, char (&directory)[kPathSize]) {
  uint32_t length = sizeof directory - 1;
  if (ov_reg_get(hive, kInstallKey, kInstallValue, directory, &length) != 0) {
    directory[0] = '\0';
    ov_log("%s", missingText);
    return;
  }
  ov_str_ncat(directory, kInstallSubdirectory, sizeof directory);
}

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

ServiceCaches& serviceCaches() {
  return processCaches;
}

std::string pluginAppDataDir() {
  std::string directory = cachedText(&ServiceCaches::appDataDirectory);
  if (!directory.empty()) return directory;
  if (const int32_t result = localAppDataDirectory(&directory); result < 0) {
    const std::string text =
        "Failed to determine application data directory (" + std::to_string(result) + ")";
    ov_err("%s", text.c_str());
    throw SystemException(text);
  }
  cacheText(&ServiceCaches::appDataDirectory, directory);
  ov_log("Application data directory: %s", directory.c_str());
  return directory;
}

std::string pluginBaseDir() {
  std::string directory = cachedText(&ServiceCaches::baseDirectory);
  if (!directory.empty()) return directory;
  directory = pluginAppDataDir();
  // The root of a drive ends in a separator, and the platform's long form of a path allows no two.
  while (!directory.empty() && (directory.back() == '\\' || directory.back() == '/')) {
    directory.pop_back();
  }
  directory += kDataDirectorySuffix;
  cacheText(&ServiceCaches::baseDirectory, directory);
  return directory;
}

std::string vantrelUrlFile() {
  return pluginBaseDir() + kUrlFile;
}

std::string vantrelExecutablePath() {
  std::string path = cachedText(&ServiceCaches::executablePath);
  if (!path.empty()) return path;
  char systemDirectory[kPathSize] = "";
  char userDirectory[kPathSize] = "";
  readInstallDirectory(OV_REG_LOCAL_MACHINE, "System installation directory not found in registry",
                       systemDirectory);
  readInstallDirectory(OV_REG_CURRENT_USER, "User installation directory not found in registry",
                       userDirectory);
  const char* const directories[] = {systemDirectory, userDirectory, nullptr};
  char found[kPathSize] = "";
  if (ov_path_find_file_in_paths(kExecutableName, directories, found, sizeof found) != 0) {
    ov_err("Failed to determine Orvane Vantrel executable path");
    return {};
  }
  ov_log("Orvane Vantrel executable path: %s", found);
  cacheText(&ServiceCaches::executablePath, found);
  return found;
}

int32_t vantrelProcessId() {
  return ov_str_atoi(readFile(pluginBaseDir() + kProcessIdFile).c_str());
}

std::string vantrelUuid() {
  try {
    const std::string file = vantrelUrlFile();
    OV_DEBUG("Reading Orvane Vantrel UUID from %s", file.c_str());
    const std::string text = readFile(file);
    if (text.empty()) {
      OV_DEBUG("Failed to read Orvane UUID from %s", file.c_str());
      return {};
    }
    // Everything behind the first line; a file of one unended line is URL and key in one.
    std::string uuid = text.substr(text.find('\n') + 1);
    OV_DEBUG("Vantrel UUID: %s", uuid.c_str());
    return uuid;
  } catch (const std::exception& error) {
    ov_err("Failed to get Vantrel UUID: %s", error.what());
    return {};
  }
}

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
