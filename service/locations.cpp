#include "service/locations.h"

#include <exception>

#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"
#include "service/caches.h"
#include "service/file.h"
#include "service/locations_platform.h"
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

}  // namespace

std::string plugin_app_data_dir() {
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

std::string plugin_base_dir() {
  std::string directory = cachedText(&ServiceCaches::baseDirectory);
  if (!directory.empty()) return directory;
  directory = plugin_app_data_dir() + kDataDirectorySuffix;
  cacheText(&ServiceCaches::baseDirectory, directory);
  return directory;
}

std::string vantrelUrlFile() {
  return plugin_base_dir() + kUrlFile;
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
  return ov_str_atoi(readFile(plugin_base_dir() + kProcessIdFile).c_str());
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

}  // namespace Vantrel::Web
