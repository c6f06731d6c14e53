#include "browsers/activex/registry_entries_win.h"

#include <windows.h>
#include <objbase.h>
#include <oleidl.h>

#include "browsers/activex/identifiers.h"
#include "browsers/activex/module_resources_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr wchar_t kApartment[] = L"Apartment";
// The control's own version in the registry, which is not its type library's.
constexpr wchar_t kControlVersion[] = L"1.0";
constexpr wchar_t kLibraryName[] = L"Orvane Web";
constexpr wchar_t kLibraryLocaleKey[] = L"409";  // the locale in hexadecimal
constexpr wchar_t kLibraryFlags[] = L"0";
// Marshals interfaces that are told by a type library alone and are for IDispatch.
constexpr wchar_t kDispatchProxy[] = L"{00020420-0000-0000-C000-000000000046}";

std::wstring classKey(const GUID& id) {
  return L"CLSID\\" + textOf(id);
}

std::wstring libraryVersion() {
  return std::to_wstring(kTypeLibraryMajor) + L"." + std::to_wstring(kTypeLibraryMinor);
}

// Of this version: another one of the library may be registered beside it.
std::wstring libraryKey() {
  return L"TypeLib\\" + textOf(kTypeLibraryId) + L"\\" + libraryVersion();
}

// What every class has: its name, its server, its program id.
void addServer(std::vector<RegistryEntry>& entries, const GUID& id, const std::wstring& name,
               const std::wstring& progId, const std::wstring& path) {
  const std::wstring key = classKey(id);
  entries.push_back({key, L"", name});
  entries.push_back({key + L"\\InprocServer32", L"", path});
  entries.push_back({key + L"\\InprocServer32", L"ThreadingModel", kApartment});
  entries.push_back({key + L"\\ProgID", L"", progId});
  entries.push_back({progId, L"", name});
  entries.push_back({progId + L"\\CLSID", L"", textOf(id)});
}

void addInterface(std::vector<RegistryEntry>& entries, const GUID& id, const wchar_t* name) {
  const std::wstring key = L"Interface\\" + textOf(id);
  entries.push_back({key, L"", name});
  entries.push_back({key + L"\\ProxyStubClsid32", L"", kDispatchProxy});
  entries.push_back({key + L"\\TypeLib", L"", textOf(kTypeLibraryId)});
  entries.push_back({key + L"\\TypeLib", L"Version", libraryVersion()});
}

}  // namespace

std::wstring textOf(const GUID& id) {
  constexpr int kLength = 39;  // with the terminator
  wchar_t text[kLength] = L"";
  StringFromGUID2(id, text, kLength);
  return text;
}

std::wstring directoryOf(const std::wstring& path) {
  const size_t separator = path.find_last_of(L"\\/");
  return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator);
}

std::vector<RegistryEntry> classEntries(const std::wstring& path) {
  std::vector<RegistryEntry> entries;
  addServer(entries, kControlClassId, moduleText(kNameText), kControlProgId, path);
  const std::wstring control = classKey(kControlClassId);
  entries.push_back({control + L"\\Control", L"", L""});
  entries.push_back({control + L"\\MiscStatus", L"", L"0"});
  entries.push_back({control + L"\\MiscStatus\\" + std::to_wstring(DVASPECT_CONTENT), L"",
                     std::to_wstring(kControlMiscStatus)});
  entries.push_back(
      {control + L"\\ToolboxBitmap32", L"", path + L", " + std::to_wstring(kNameText)});
  entries.push_back({control + L"\\TypeLib", L"", textOf(kTypeLibraryId)});
  entries.push_back({control + L"\\Version", L"", kControlVersion});
  addServer(entries, kPropertyPageClassId, moduleText(kPageNameText), kPropertyPageProgId, path);
  return entries;
}

std::vector<RegistryEntry> typeLibraryEntries(const std::wstring& path) {
  const std::wstring library = libraryKey();
  std::vector<RegistryEntry> entries = {
      {library, L"", kLibraryName},
      {library + L"\\FLAGS", L"", kLibraryFlags},
      {library + L"\\HELPDIR", L"", directoryOf(path)},
      {library + L"\\" + kLibraryLocaleKey + L"\\win64", L"", path},
  };
  addInterface(entries, kDispatchInterfaceId, L"_DOrvaneWeb");
  addInterface(entries, kEventInterfaceId, L"_DOrvaneWebEvents");
  return entries;
}

std::vector<RegistryEntry> categoryEntries() {
  const std::wstring categories = classKey(kControlClassId) + L"\\Implemented Categories\\";
  return {{categories + textOf(kSafeForScripting), L"", L""},
          {categories + textOf(kSafeForInitializing), L"", L""}};
}

std::vector<std::wstring> classKeys() {
  return {classKey(kControlClassId), kControlProgId, classKey(kPropertyPageClassId),
          kPropertyPageProgId};
}

std::vector<std::wstring> typeLibraryKeys() {
  return {libraryKey(), L"Interface\\" + textOf(kDispatchInterfaceId),
          L"Interface\\" + textOf(kEventInterfaceId)};
}

}  // namespace Vantrel::Web::ActiveX
