#include "tests/support/installed_client.h"

#include <windows.h>

#include <tlhelp32.h>

#include <array>
#include <stdexcept>

namespace Vantrel::Web::TestSupport {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kSubkey = L"SOFTWARE\\Orvane\\Orvane Vantrel\\v2";
constexpr const wchar_t* kValue = L"InstallDir";
constexpr DWORD kKillWaitMs = 10000;

std::optional<std::wstring> readInstallDir() {
  std::array<wchar_t, MAX_PATH> text{};
  DWORD size = sizeof text;
  LSTATUS status =
      RegGetValueW(HKEY_CURRENT_USER, kSubkey, kValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
  if (status != ERROR_SUCCESS) return {};
  return text.data();
}

bool writeInstallDir(const std::wstring& text) {
  auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  return RegSetKeyValueW(HKEY_CURRENT_USER, kSubkey, kValue, REG_SZ, text.c_str(), size) ==
         ERROR_SUCCESS;
}

bool runsProgram(HANDLE process, const fs::path& program) {
  std::array<wchar_t, 1024> image{};
  auto size = static_cast<DWORD>(image.size());
  if (!QueryFullProcessImageNameW(process, 0, image.data(), &size)) return false;
  std::error_code error;
  return fs::equivalent(image.data(), program, error);
}

}  // namespace

InstalledClient::InstalledClient(const std::string& knobs) : formerInstallDir_(readInstallDir()) {
  removeClientFiles(realClientDataDir());
  fs::create_directories(program().parent_path());
  fs::copy_file(clientProgram(), program());
  configure(knobs);
  fs::path folder = folder_.path();
  if (!writeInstallDir(folder.make_preferred().wstring() + L"\\"))
    throw std::runtime_error("cannot write the install directory");
}

InstalledClient::~InstalledClient() {
  killAll();
  removeClientFiles(realClientDataDir());
  if (formerInstallDir_)
    writeInstallDir(*formerInstallDir_);
  else
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kSubkey, kValue);
}

fs::path InstalledClient::program() const {
  return folder_.path() / "bin" / "orvanevantrel.exe";
}

void InstalledClient::configure(const std::string& knobs) const {
  folder_.configure(program().parent_path() / "orvanevantrel.conf", knobs);
}

std::vector<uint32_t> InstalledClient::running() const {
  std::vector<uint32_t> ids;
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(snapshot, &entry); more;
       more = Process32NextW(snapshot, &entry)) {
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, entry.th32ProcessID);
    if (process == nullptr) continue;
    if (runsProgram(process, program())) ids.push_back(entry.th32ProcessID);
    CloseHandle(process);
  }
  CloseHandle(snapshot);
  return ids;
}

void InstalledClient::killAll() const {
  for (uint32_t id : running()) {
    HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
    if (process == nullptr) continue;
    TerminateProcess(process, 1);
    WaitForSingleObject(process, kKillWaitMs);
    CloseHandle(process);
  }
}

}  // namespace Vantrel::Web::TestSupport
