#include "tests/support/client_folder.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Vantrel::Web::TestSupport {
namespace {

namespace fs = std::filesystem;

constexpr const char* kUriFile = "var/run/http.uri";
constexpr const char* kPidFile = "var/run/process.pid";
constexpr int kRemoveTries = 200;
constexpr DWORD kRemovePauseMs = 10;

std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

uint16_t portIn(const std::string& uriText) {
  size_t colon = uriText.rfind(':', uriText.find('\n'));
  if (colon == std::string::npos) return 0;
  return static_cast<uint16_t>(std::strtoul(uriText.c_str() + colon + 1, nullptr, 10));
}

// With a blank in its name, as real installations have one.
fs::path freshFolder() {
  static std::atomic<unsigned> count = 0;
  return fs::temp_directory_path() /
         ("ov client-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count));
}

}  // namespace

std::string ClientAddress::key() const {
  size_t lineFeed = uriText.find('\n');
  return lineFeed == std::string::npos ? uriText : uriText.substr(lineFeed + 1);
}

ClientFolder::ClientFolder() : path_(freshFolder()) {
  fs::remove_all(path_);
  for (const fs::path& folder : {path_, remote(), downloads()}) fs::create_directories(folder);
}

ClientFolder::~ClientFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void ClientFolder::configure(const fs::path& file, const std::string& knobs) const {
  auto text = [](const fs::path& path) {
    std::u8string utf8 = path.generic_u8string();
    return std::string(utf8.begin(), utf8.end());
  };
  std::ofstream out(file, std::ios::binary);
  out << "remote_root=" << text(remote()) << "\ndownload_root=" << text(downloads())
      << "\nrecord=" << text(path_ / "record") << "\nidle_seconds=60\n"
      << knobs;
}

std::vector<std::string> ClientFolder::records() const {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(path_ / "record", error))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<std::string> texts;
  for (const fs::path& file : files) texts.push_back(bytesOf(file));
  return texts;
}

ClientAddress readClientAddress(const fs::path& dataDir) {
  ClientAddress address;
  address.uriText = bytesOf(dataDir / kUriFile);
  address.port = portIn(address.uriText);
  std::string pid = bytesOf(dataDir / kPidFile);
  address.processId = static_cast<uint32_t>(std::strtoul(pid.c_str(), nullptr, 10));
  return address;
}

fs::path realClientDataDir() {
  std::array<wchar_t, MAX_PATH> path{};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, path.data())))
    throw std::runtime_error("no local application data directory");
  return fs::path(path.data()) / "Orvane" / "Orvane Vantrel";
}

void removeClientFiles(const fs::path& dataDir) {
  for (const char* name : {kUriFile, kPidFile}) {
    std::error_code error;
    for (int i = 0; i < kRemoveTries; ++i) {
      fs::remove(dataDir / name, error);
      if (!error) break;
      Sleep(kRemovePauseMs);
    }
  }
}

fs::path clientProgram() {
  // A cross build tells the path of its own system, all of which Wine shows as drive Z.
  fs::path built = OV_CLIENT_PROGRAM;
  return built.has_root_name() ? built : fs::path("Z:") / built;
}

}  // namespace Vantrel::Web::TestSupport
