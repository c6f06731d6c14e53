#include "tools/client/platform_win.h"

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

constexpr DWORD kLongestPath = 32768;

std::filesystem::path shellFolder(int folder) {
  std::array<wchar_t, MAX_PATH> path{};
  HRESULT result = SHGetFolderPathW(nullptr, folder, nullptr, 0, path.data());
  if (FAILED(result)) throw std::runtime_error("SHGetFolderPathW failed");
  return path.data();
}

}  // namespace

std::filesystem::path defaultDataDir() {
  return shellFolder(CSIDL_LOCAL_APPDATA) / "Orvane" / "Orvane Vantrel";
}

std::filesystem::path defaultDownloadRoot() {
  return shellFolder(CSIDL_PROFILE) / "Downloads";
}

std::filesystem::path ownProgram() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
  return path;
}

namespace {

// The command line, the program's name as one word. The plug-in starts the client by its bare path,
// without quotes, so that blanks in it would make arguments of its parts.
std::wstring commandLineOfWords() {
  std::wstring line = GetCommandLineW();
  std::wstring path = ownProgram().wstring();
  std::wstring start = line.substr(0, path.size());
  std::replace(start.begin(), start.end(), L'/', L'\\');
  if (_wcsicmp(start.c_str(), path.c_str()) != 0) return line;
  return L"orvanevantrel" + line.substr(path.size());
}

}  // namespace

std::vector<std::string> commandLineArguments() {
  int count = 0;
  std::unique_ptr<LPWSTR, decltype(&LocalFree)> arguments(
      CommandLineToArgvW(commandLineOfWords().c_str(), &count), &LocalFree);
  std::vector<std::string> texts;
  for (int i = 1; arguments && i < count; ++i) {
    std::u8string text = std::filesystem::path(arguments.get()[i]).u8string();
    texts.emplace_back(text.begin(), text.end());
  }
  return texts;
}

std::string environmentText(const wchar_t* name) {
  std::wstring value(kLongestPath, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), kLongestPath));
  return textOf(value);
}

std::uint32_t ownProcessId() {
  return GetCurrentProcessId();
}

}  // namespace Vantrel::StandIn
