#include "tests/host/scratch_profile.h"

#include <windows.h>

#include <shlobj.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Vantrel::Web::Host {

namespace fs = std::filesystem;

namespace {

constexpr wchar_t kShellFolders[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr wchar_t kClientKey[] = L"SOFTWARE\\Orvane\\Orvane Vantrel\\v2";

void require(LSTATUS status, const char* what) {
  if (status != ERROR_SUCCESS) {
    throw std::runtime_error(std::string(what) + ": " + std::to_string(status));
  }
}

void setText(HKEY root, const wchar_t* key, const wchar_t* name, const std::wstring& text,
             DWORD type) {
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  require(RegSetKeyValueW(root, key, name, type, text.c_str(), bytes), "RegSetKeyValueW");
}

// The folders of the profile follow two variables, which each process has and may change for
// itself; to everybody else this says what held before.
void followVariables() {
  setText(HKEY_CURRENT_USER, kShellFolders, L"Local AppData", L"%LOCALAPPDATA%", REG_EXPAND_SZ);
  setText(HKEY_CURRENT_USER, kShellFolders, L"AppData", L"%APPDATA%", REG_EXPAND_SZ);
}

// Sends what this process asks of a part of the registry to a key.
void override(HKEY part, const std::wstring& key) {
  HKEY place = nullptr;
  require(RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          &place, nullptr),
          "RegCreateKeyExW");
  const LSTATUS status = RegOverridePredefKey(part, place);
  RegCloseKey(place);
  require(status, "RegOverridePredefKey");
}

void checkFolder(int folder, const fs::path& expected) {
  wchar_t path[MAX_PATH] = L"";
  if (FAILED(SHGetFolderPathW(nullptr, folder, nullptr, 0, path)) || path != expected) {
    throw std::runtime_error("the profile's folder did not move");
  }
}

}  // namespace

ScratchProfile::ScratchProfile()
    : root_(fs::temp_directory_path() / ("ov profile-" + std::to_string(GetCurrentProcessId()))),
      key_(L"Software\\Orvane Web Tests\\" + std::to_wstring(GetCurrentProcessId())) {
  // What a process of the same number left behind when it crashed.
  fs::remove_all(root_);
  RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
  fs::create_directories(localAppData());
  fs::create_directories(roamingAppData());
  followVariables();
  SetEnvironmentVariableW(L"LOCALAPPDATA", localAppData().c_str());
  SetEnvironmentVariableW(L"APPDATA", roamingAppData().c_str());
  // Before the user's part moves: behind it both keys are in the same place.
  override(HKEY_CURRENT_USER, key_);
  followVariables();
  checkFolder(CSIDL_LOCAL_APPDATA, localAppData());
  checkFolder(CSIDL_APPDATA, roamingAppData());
}

ScratchProfile::~ScratchProfile() {
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
  RegDeleteKeyW(HKEY_CURRENT_USER, key_.c_str());
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

fs::path ScratchProfile::runFile(const char* name) const {
  const fs::path folder = localAppData() / "Orvane" / "Orvane Vantrel" / "var" / "run";
  fs::create_directories(folder);
  return folder / name;
}

void ScratchProfile::writeServiceUrl(const std::string& text) const {
  std::ofstream(runFile("http.uri"), std::ios::binary) << text;
}

void ScratchProfile::removeServiceUrl() const {
  fs::remove(runFile("http.uri"));
}

void ScratchProfile::writeProcessId(const std::string& text) const {
  std::ofstream(runFile("process.pid"), std::ios::binary) << text;
}

void ScratchProfile::setUserInstallDir(const std::wstring& directory) const {
  setText(HKEY_CURRENT_USER, kClientKey, L"InstallDir", directory, REG_SZ);
}

void ScratchProfile::setSystemInstallDir(const std::wstring& directory) const {
  setText(HKEY_LOCAL_MACHINE, kClientKey, L"InstallDir", directory, REG_SZ);
}

void ScratchProfile::emptySystemRegistry() {
  override(HKEY_LOCAL_MACHINE, L"System");
}

std::string ScratchProfile::log() const {
  std::ifstream file(localAppData() / "Orvane" / "Orvane Vantrel" / "var" / "log" /
                         "orvane-vantrel-browser-plugin.log",
                     std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace Vantrel::Web::Host
