#include "tests/support/service_files.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "service/launch.h"
#include "service/locations.h"

namespace Vantrel::Web::TestSupport {

namespace {

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

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

std::string makeTemporaryDirectory() {
  std::random_device random;
  std::ostringstream name;
  name << "ov-test-" << std::hex << random() << random();
  const std::filesystem::path path = std::filesystem::temp_directory_path() / name.str();
  std::filesystem::create_directories(path);
  return path.string();
}

ServiceFiles::ServiceFiles(const std::string& executablePath)
    : directory_(makeTemporaryDirectory() + "/data") {
  std::filesystem::create_directories(clientDirectory() + "/var/run");
  resetServiceCaches(directory_, executablePath);
}

ServiceFiles::~ServiceFiles() {
  resetServiceCaches();
  std::error_code ignored;
  std::filesystem::remove_all(std::filesystem::path(directory_).parent_path(), ignored);
}

// The client's directory as the service client composes it, backslashes and all: on a platform
// without them it is one oddly named directory.
std::string ServiceFiles::clientDirectory() const {
  return directory_ + "\\Orvane\\Orvane Vantrel";
}

std::string ServiceFiles::urlFile() const {
  return clientDirectory() + "/var/run/http.uri";
}

std::string ServiceFiles::processIdFile() const {
  return clientDirectory() + "/var/run/process.pid";
}

void ServiceFiles::writeUrl(const std::string& text) const {
  writeFile(urlFile(), text);
}

void ServiceFiles::writeProcessId(const std::string& text) const {
  writeFile(processIdFile(), text);
}

void ServiceFiles::removeUrl() const {
  std::filesystem::remove(urlFile());
}

}  // namespace Vantrel::Web::TestSupport
