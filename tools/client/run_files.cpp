#include "tools/client/run_files.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kUriFile = "http.uri";
constexpr const char* kPidFile = "process.pid";
constexpr int kRenameTries = 1000;
constexpr std::chrono::milliseconds kRenamePause{5};

}  // namespace

RunFiles::RunFiles(const fs::path& dataDir, const Knobs& knobs, std::uint32_t processId)
    : folder_(dataDir / "var" / "run"), knobs_(knobs), processId_(std::to_string(processId)) {}

void RunFiles::write(std::uint16_t port, const std::string& key) const {
  if (knobs_.uriFile == "none") return;
  fs::create_directories(folder_);
  replaceFile(folder_ / kPidFile, processId_);
  replaceFile(folder_ / kUriFile, uriText(port, key, knobs_.uriFile));
}

void RunFiles::remove() const {
  std::ifstream in(folder_ / kPidFile);
  std::string owner{std::istreambuf_iterator<char>(in), {}};
  in.close();
  if (owner != processId_) return;
  std::error_code ignored;
  fs::remove(folder_ / kUriFile, ignored);
  fs::remove(folder_ / kPidFile, ignored);
}

std::string RunFiles::keyOfReader(const std::string& uriText) {
  size_t lineFeed = uriText.find('\n');
  return lineFeed == std::string::npos ? uriText : uriText.substr(lineFeed + 1);
}

std::string RunFiles::uriText(std::uint16_t port, const std::string& key, const std::string& form) {
  std::string url = "http://127.0.0.1:" + std::to_string(port);
  if (form == "url_only") return url;
  return url + "\n" + key + (form == "key_lf" ? "\n" : "");
}

void replaceFile(const fs::path& path, const std::string& text) {
  fs::path fresh = path;
  fresh += ".new";
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (!out)
    throw fs::filesystem_error("cannot write", fresh, std::make_error_code(std::errc::io_error));
  // On Windows a file that somebody has open at this moment cannot be replaced.
  std::error_code error;
  for (int i = 0; i < kRenameTries; ++i) {
    fs::rename(fresh, path, error);
    if (!error) return;
    std::this_thread::sleep_for(kRenamePause);
  }
  throw fs::filesystem_error("cannot replace", path, error);
}

}  // namespace Vantrel::StandIn
