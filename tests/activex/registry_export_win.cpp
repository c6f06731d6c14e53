#include "tests/activex/registry_export_win.h"

#include <algorithm>

namespace Vantrel::Web::TestSupport {

namespace {

// The longest name of a key or value that the system allows.
constexpr DWORD kLongestName = 16384;

struct Walk {
  const std::vector<std::wstring>& without;
  RegistryExport& found;
};

// A text as it is, anything else as its type and bytes.
std::wstring shown(DWORD type, const std::vector<BYTE>& data) {
  if (type == REG_SZ && data.size() >= sizeof(wchar_t)) {
    return {reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t) - 1};
  }
  std::wstring text = L"type " + std::to_wstring(type);
  for (const BYTE byte : data) text += L" " + std::to_wstring(byte);
  return text;
}

void exportValues(HKEY key, const std::wstring& path, const Walk& walk) {
  std::vector<wchar_t> name(kLongestName);
  std::vector<BYTE> data(256);
  for (DWORD index = 0;;) {
    auto nameLength = static_cast<DWORD>(name.size());
    auto size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LSTATUS status =
        RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, data.data(), &size);
    if (status == ERROR_MORE_DATA) {
      data.resize(std::max<size_t>(size, data.size() * 2));
      continue;
    }
    if (status != ERROR_SUCCESS) return;
    walk.found[path + L":" + name.data()] = shown(type, {data.begin(), data.begin() + size});
    ++index;
  }
}

void exportKey(HKEY parent, const std::wstring& name, const std::wstring& path, const Walk& walk) {
  HKEY key = nullptr;
  // Neither a link to another place nor a key that is just going.
  if (RegOpenKeyExW(parent, name.c_str(), REG_OPTION_OPEN_LINK, KEY_READ | KEY_WOW64_64KEY, &key) !=
      ERROR_SUCCESS) {
    return;
  }
  walk.found[path] = L"";
  exportValues(key, path, walk);
  wchar_t child[256];
  for (DWORD index = 0;; ++index) {
    DWORD length = 256;
    if (RegEnumKeyExW(key, index, child, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    const std::wstring childPath = path.empty() ? child : path + L"\\" + child;
    if (std::find(walk.without.begin(), walk.without.end(), childPath) == walk.without.end()) {
      exportKey(key, child, childPath, walk);
    }
  }
  RegCloseKey(key);
}

}  // namespace

RegistryExport exportRegistry(HKEY root, const std::wstring& key,
                              const std::vector<std::wstring>& without) {
  RegistryExport found;
  exportKey(root, key, L"", {without, found});
  return found;
}

RegistryExport added(const RegistryExport& before, const RegistryExport& after) {
  RegistryExport difference;
  for (const auto& entry : after) {
    const auto former = before.find(entry.first);
    if (former == before.end() || former->second != entry.second) difference.insert(entry);
  }
  return difference;
}

}  // namespace Vantrel::Web::TestSupport
