#include "tests/activex/registered_keys_win.h"

#include "tests/host/process_state.h"

namespace Vantrel::Web::TestSupport {

namespace {

// A path of an export below `key`, which itself is the empty one.
std::wstring joined(const std::wstring& key, const std::wstring& path) {
  return path.empty() || path.front() == L':' ? key + path : key + L"\\" + path;
}

bool isOfTypeLibrary(std::wstring key) {
  CharLowerW(key.data());
  return key.starts_with(L"typelib\\") || key.starts_with(L"interface\\");
}

}  // namespace

const std::vector<std::wstring>& registeredKeys() {
  static const std::vector<std::wstring> kKeys = {
      L"CLSID\\{E9378289-952A-49ED-95A3-F5141E4E8BD6}",
      L"Orvane.OrvaneWebCtrl.1",
      L"CLSID\\{5F802412-DCD9-4FE1-89D9-9B0136CEB01D}",
      L"Orvane.OrvaneWebPropPage.1",
      L"TypeLib\\{36B9C4ED-8E71-46A7-8227-8FBD962ED169}",
      L"Interface\\{F0D8624E-30EE-422E-ABD8-C3E97AB604BC}",
      L"Interface\\{E37768F5-FDB4-40C2-B006-746B52DE0736}"};
  return kKeys;
}

std::wstring libraryPath() {
  wchar_t path[MAX_PATH] = L"";
  GetFullPathNameW((Host::programDirectory() + L"..\\..\\nporvaneweb.dll").c_str(), MAX_PATH, path,
                   nullptr);
  return path;
}

RegistryExport oursForAll() {
  RegistryExport ours;
  for (const std::wstring& key : registeredKeys()) {
    RegistryExport found = exportRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes\\" + key);
    for (const auto& entry : found) ours.insert({joined(key, entry.first), entry.second});
  }
  return ours;
}

RegistryExport expectedClasses() {
  const std::wstring path = libraryPath();
  const std::wstring control = L"CLSID\\{E9378289-952A-49ED-95A3-F5141E4E8BD6}";
  const std::wstring page = L"CLSID\\{5F802412-DCD9-4FE1-89D9-9B0136CEB01D}";
  const std::wstring categories = control + L"\\Implemented Categories";
  RegistryExport expected = {
      {control + L":", L"Orvane Web"},
      {control + L"\\InprocServer32:", path},
      {control + L"\\InprocServer32:ThreadingModel", L"Apartment"},
      {control + L"\\MiscStatus:", L"0"},
      {control + L"\\MiscStatus\\1:", L"131473"},
      {control + L"\\ProgID:", L"Orvane.OrvaneWebCtrl.1"},
      {control + L"\\ToolboxBitmap32:", path + L", 1"},
      {control + L"\\TypeLib:", L"{36B9C4ED-8E71-46A7-8227-8FBD962ED169}"},
      {control + L"\\Version:", L"1.0"},
      {page + L":", L"Orvane Web Property Page"},
      {page + L"\\InprocServer32:", path},
      {page + L"\\InprocServer32:ThreadingModel", L"Apartment"},
      {page + L"\\ProgID:", L"Orvane.OrvaneWebPropPage.1"},
      {L"Orvane.OrvaneWebCtrl.1:", L"Orvane Web"},
      {L"Orvane.OrvaneWebCtrl.1\\CLSID:", L"{E9378289-952A-49ED-95A3-F5141E4E8BD6}"},
      {L"Orvane.OrvaneWebPropPage.1:", L"Orvane Web Property Page"},
      {L"Orvane.OrvaneWebPropPage.1\\CLSID:", L"{5F802412-DCD9-4FE1-89D9-9B0136CEB01D}"},
      {control + L"\\Control", L""},
      {categories, L""},
      {categories + L"\\{7DD95801-9882-11CF-9FA9-00AA006C42C4}", L""},
      {categories + L"\\{7DD95802-9882-11CF-9FA9-00AA006C42C4}", L""},
  };
  // And the keys that these values stand in.
  const RegistryExport values = expected;
  for (const auto& entry : values) {
    const size_t colon = entry.first.find(L':');
    if (colon != std::wstring::npos) expected[entry.first.substr(0, colon)] = L"";
  }
  return expected;
}

RegistryExport withoutTypeLibrary(const RegistryExport& all) {
  RegistryExport rest;
  for (const auto& entry : all) {
    if (!isOfTypeLibrary(entry.first)) rest.insert(entry);
  }
  return rest;
}

}  // namespace Vantrel::Web::TestSupport
