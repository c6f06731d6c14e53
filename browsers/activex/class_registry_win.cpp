#include "browsers/activex/class_registry_win.h"

#include <memory>

namespace Vantrel::Web::ActiveX {

namespace {

struct KeyClose {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyClose>;

// As the library is a 64-bit one, the system sends it to the 64-bit view by itself.
constexpr wchar_t kClasses[] = L"Software\\Classes";

HKEY rootOf(Place place) {
  return place == Place::kAllUsers ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring pathOf(const std::wstring& key) {
  return kClasses + (L"\\" + key);
}

LSTATUS write(Place place, const RegistryEntry& entry) {
  HKEY opened = nullptr;
  const LSTATUS status = RegCreateKeyExW(rootOf(place), pathOf(entry.key).c_str(), 0, nullptr, 0,
                                         KEY_SET_VALUE, nullptr, &opened, nullptr);
  if (status != ERROR_SUCCESS) return status;
  const Key key(opened);
  // A key that is there for its name alone has no value of its own.
  if (entry.name.empty() && entry.text.empty()) return ERROR_SUCCESS;
  const auto bytes = static_cast<DWORD>((entry.text.size() + 1) * sizeof(wchar_t));
  return RegSetValueExW(key.get(), entry.name.c_str(), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(entry.text.c_str()), bytes);
}

LSTATUS remove(Place place, const std::wstring& key) {
  const std::wstring path = pathOf(key);
  const LSTATUS status = RegDeleteTreeW(rootOf(place), path.c_str());
  return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND ? ERROR_SUCCESS : status;
}

bool isEmpty(HKEY root, const std::wstring& path) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  const Key key(opened);
  DWORD keys = 0;
  DWORD values = 0;
  return RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                          nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
         keys == 0 && values == 0;
}

// The library's key outlives its last version otherwise; and a profile has no "CLSID" before its
// first class, which we may have been.
void removeEmptyParents(Place place, std::wstring key) {
  for (size_t end = key.rfind(L'\\'); end != std::wstring::npos; end = key.rfind(L'\\')) {
    key.resize(end);
    const std::wstring parent = pathOf(key);
    if (!isEmpty(rootOf(place), parent)) return;
    RegDeleteKeyW(rootOf(place), parent.c_str());
  }
}

}  // namespace

HRESULT writeEntries(Place place, const std::vector<RegistryEntry>& entries) {
  for (const RegistryEntry& entry : entries) {
    const LSTATUS status = write(place, entry);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<unsigned long>(status));
  }
  return S_OK;
}

HRESULT removeKeys(Place place, const std::vector<std::wstring>& keys) {
  LSTATUS first = ERROR_SUCCESS;
  for (const std::wstring& key : keys) {
    const LSTATUS status = remove(place, key);
    if (status == ERROR_SUCCESS) removeEmptyParents(place, key);
    if (first == ERROR_SUCCESS) first = status;
  }
  return HRESULT_FROM_WIN32(static_cast<unsigned long>(first));
}

bool keyExists(Place place, const std::wstring& key) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(rootOf(place), pathOf(key).c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
    return false;
  }
  RegCloseKey(opened);
  return true;
}

}  // namespace Vantrel::Web::ActiveX
