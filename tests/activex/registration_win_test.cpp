// Registration of the shipped library: what regsvr32 writes, that all of it goes again, and what
// happens to a user without administrator's rights.
#include <gmock/gmock.h>

#include <windows.h>
#include <comcat.h>
#include <ole2.h>
#include <olectl.h>

#include <string>

#include "browsers/activex/identifiers.h"
#include "browsers/activex/registry_entries_win.h"
#include "dialogs/dialog_com_win.h"
#include "tests/activex/registry_export_win.h"
#include "tests/host/process_state.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/import_patch_win.h"
#include "text/wide_text.h"

namespace Vantrel::Web {
namespace {

using namespace ActiveX;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using TestSupport::added;
using TestSupport::exportRegistry;
using TestSupport::ImportPatch;
using TestSupport::RegistryExport;

constexpr wchar_t kClasses[] = L"Software\\Classes";

// A path of an export below `key`, which itself is the empty one.
std::wstring joined(const std::wstring& key, const std::wstring& path) {
  return path.empty() || path.front() == L':' ? key + path : key + L"\\" + path;
}

// The parts that a program may write to when it is installed. Not the system's own one, in which
// Wine notes its screen whenever the first window appears.
RegistryExport wholeRegistry() {
  RegistryExport all = exportRegistry(HKEY_LOCAL_MACHINE, L"Software");
  for (const auto& entry : exportRegistry(HKEY_CURRENT_USER, L"", {L"Software\\Wine"})) {
    all.insert({L"user\\" + entry.first, entry.second});
  }
  return all;
}

// What there is of ours for all users. A walk through all of their classes takes a second; one case
// makes it.
RegistryExport oursForAll() {
  RegistryExport ours;
  for (const std::wstring key :
       {L"CLSID\\{E9378289-952A-49ED-95A3-F5141E4E8BD6}", L"Orvane.OrvaneWebCtrl.1",
        L"CLSID\\{5F802412-DCD9-4FE1-89D9-9B0136CEB01D}", L"Orvane.OrvaneWebPropPage.1",
        L"TypeLib\\{36B9C4ED-8E71-46A7-8227-8FBD962ED169}",
        L"Interface\\{F0D8624E-30EE-422E-ABD8-C3E97AB604BC}",
        L"Interface\\{E37768F5-FDB4-40C2-B006-746B52DE0736}"}) {
    RegistryExport found = exportRegistry(HKEY_LOCAL_MACHINE, kClasses + (L"\\" + key));
    for (const auto& entry : found) ours.insert({joined(key, entry.first), entry.second});
  }
  return ours;
}

// Registry texts that begin with one of these are the type library's, which the system writes in
// its own way.
bool isOfTypeLibrary(std::wstring key) {
  CharLowerW(key.data());
  return key.starts_with(L"typelib\\") || key.starts_with(L"interface\\");
}

RegistryExport withoutTypeLibrary(const RegistryExport& all) {
  RegistryExport rest;
  for (const auto& entry : all) {
    if (!isOfTypeLibrary(entry.first)) rest.insert(entry);
  }
  return rest;
}

std::wstring libraryPath() {
  wchar_t path[MAX_PATH] = L"";
  GetFullPathNameW((Host::programDirectory() + L"..\\..\\nporvaneweb.dll").c_str(), MAX_PATH, path,
                   nullptr);
  return path;
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

// What is told for a registration that is refused: nothing is written for all users.
LSTATUS WINAPI refuseForAllUsers(HKEY root, LPCWSTR key, DWORD reserved, LPWSTR keyClass,
                                 DWORD options, REGSAM access, LPSECURITY_ATTRIBUTES security,
                                 PHKEY result, LPDWORD disposition) {
  if (root == HKEY_LOCAL_MACHINE) return ERROR_ACCESS_DENIED;
  return RegCreateKeyExW(root, key, reserved, keyClass, options, access, security, result,
                         disposition);
}

LSTATUS WINAPI refuseAll(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, LPSECURITY_ATTRIBUTES, PHKEY,
                         LPDWORD) {
  return ERROR_ACCESS_DENIED;
}

LSTATUS WINAPI failWriting(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD) {
  return ERROR_NO_SYSTEM_RESOURCES;
}

HRESULT WINAPI refuseTypeLibrary(ITypeLib*, OLECHAR*, OLECHAR*) {
  return TYPE_E_REGISTRYACCESS;
}

HRESULT WINAPI failTypeLibrary(ITypeLib*, OLECHAR*, OLECHAR*) {
  return E_OUTOFMEMORY;
}

class RegistrationTest : public testing::Test {
 protected:
  void SetUp() override {
    CoInitialize(nullptr);
    library_ = LoadLibraryW(libraryPath().c_str());
    ASSERT_NE(library_, nullptr);
    ASSERT_THAT(oursForAll(), IsEmpty());
  }
  // Whatever a case did, its end leaves nothing.
  void TearDown() override {
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_THAT(oursForAll(), IsEmpty());
    EXPECT_THAT(writtenForUser(), IsEmpty());
    FreeLibrary(library_);
    CoUninitialize();
  }

  HRESULT call(const char* name) const {
    return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
        reinterpret_cast<void*>(GetProcAddress(library_, name)))();
  }
  // The user of a scratch profile has no classes before; every other has the key for them.
  static RegistryExport writtenForUser() {
    RegistryExport written = exportRegistry(HKEY_CURRENT_USER, kClasses);
    written.erase(L"");
    return written;
  }

  Host::ScratchProfile profile_;
  HMODULE library_ = nullptr;
};

TEST_F(RegistrationTest, ForAllUsersItWritesTheClassesAndNothingForThisOne) {
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_EQ(withoutTypeLibrary(oursForAll()), expectedClasses());
  EXPECT_THAT(writtenForUser(), IsEmpty());
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Registered for all users\r\n"));
}

TEST_F(RegistrationTest, ItLogsItsSteps) {
  call("DllRegisterServer");
  EXPECT_THAT(profile_.log(),
              HasSubstr("DBG COrvaneWebCtrl::COrvaneWebCtrlFactory::UpdateRegistry()\r\n"));
  EXPECT_THAT(profile_.log(), HasSubstr("DBG OrvaneWebCtrl RegisterCLSIDInCategory()\r\n"));
  EXPECT_THAT(profile_.log(), Not(HasSubstr("ERR ")));
}

TEST_F(RegistrationTest, TheSystemFindsWhatWasRegistered) {
  ASSERT_EQ(call("DllRegisterServer"), S_OK);
  CLSID id = {};
  EXPECT_EQ(CLSIDFromProgID(kControlProgId, &id), S_OK);
  EXPECT_EQ(id, kControlClassId);
  EXPECT_EQ(CLSIDFromProgID(kPropertyPageProgId, &id), S_OK);
  EXPECT_EQ(id, kPropertyPageClassId);
  DWORD status = 0;
  EXPECT_EQ(OleRegGetMiscStatus(kControlClassId, DVASPECT_CONTENT, &status), S_OK);
  EXPECT_EQ(status, 131473u);
  ComPointer<ITypeLib> library;
  EXPECT_EQ(LoadRegTypeLib(kTypeLibraryId, 2, 8, 1033, library.put()), S_OK);
  ComPointer<ICatInformation> categories;
  ASSERT_EQ(CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                             IID_ICatInformation, categories.putVoid()),
            S_OK);
  for (CATID category : {kSafeForScripting, kSafeForInitializing}) {
    EXPECT_EQ(categories->IsClassOfCategories(kControlClassId, 1, &category, 0, nullptr), S_OK);
  }
}

TEST_F(RegistrationTest, ASecondTimeChangesNothing) {
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  const RegistryExport first = oursForAll();
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_EQ(oursForAll(), first);
}

TEST_F(RegistrationTest, OutWithoutInSucceeds) {
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_THAT(profile_.log(), Not(HasSubstr("LOG Unregistered")));
}

TEST_F(RegistrationTest, WithoutRightsItRegistersForThisUserAndSaysSo) {
  {
    const ImportPatch keys(library_, "RegCreateKeyExW", refuseForAllUsers);
    const ImportPatch library(library_, "RegisterTypeLib", refuseTypeLibrary);
    EXPECT_EQ(call("DllRegisterServer"), S_FALSE);
  }
  EXPECT_THAT(oursForAll(), IsEmpty());
  RegistryExport written = withoutTypeLibrary(writtenForUser());
  for (const wchar_t* const parent : {L"CLSID", L"Interface", L"TypeLib"}) written.erase(parent);
  EXPECT_EQ(written, expectedClasses());
  EXPECT_THAT(profile_.log(), HasSubstr("ERR Failed to register for all users: 8002801c\r\n"));
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Registered for this user\r\n"));
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Unregistered for this user\r\n"));
}

TEST_F(RegistrationTest, ForThisUserTheTypeLibraryIsWrittenAsTheSystemWouldForAll) {
  call("DllRegisterServer");
  RegistryExport all = oursForAll();
  call("DllUnregisterServer");
  {
    const ImportPatch library(library_, "RegisterTypeLib", refuseTypeLibrary);
    EXPECT_EQ(call("DllRegisterServer"), S_FALSE);
  }
  const RegistryExport user = writtenForUser();
  const std::wstring path = libraryPath();
  const std::wstring library = L"TypeLib\\{36B9C4ED-8E71-46A7-8227-8FBD962ED169}\\2.8";
  EXPECT_THAT(user, testing::IsSupersetOf(RegistryExport{
                        {library + L":", L"Orvane Web"},
                        {library + L"\\409\\win64:", path},
                        {library + L"\\HELPDIR:", path.substr(0, path.rfind(L'\\'))},
                        {library + L"\\FLAGS:", L"0"},
                    }));
  // The interfaces are there with the same texts; for them the system writes one key more, which
  // 16-bit programs had.
  size_t interfaces = 0;
  for (const auto& entry : user) {
    if (!entry.first.starts_with(L"Interface\\")) continue;
    ++interfaces;
    ASSERT_EQ(all.count(entry.first), 1u);
    EXPECT_EQ(all[entry.first], entry.second);
  }
  EXPECT_EQ(interfaces, 14u);
}

TEST_F(RegistrationTest, ARefusalBehindTheTypeLibraryLeavesNoneOfItForAllUsers) {
  {
    const ImportPatch keys(library_, "RegCreateKeyExW", refuseForAllUsers);
    EXPECT_EQ(call("DllRegisterServer"), S_FALSE);
  }
  EXPECT_THAT(oursForAll(), IsEmpty());
  EXPECT_THAT(profile_.log(), HasSubstr("ERR Failed to register for all users: 80070005\r\n"));
}

TEST_F(RegistrationTest, RefusedEverywhereItTellsTheTypeLibraryAndLeavesNothing) {
  const ImportPatch keys(library_, "RegCreateKeyExW", refuseAll);
  const ImportPatch library(library_, "RegisterTypeLib", refuseTypeLibrary);
  EXPECT_EQ(call("DllRegisterServer"), SELFREG_E_TYPELIB);
  EXPECT_EQ(SELFREG_E_TYPELIB, static_cast<HRESULT>(0x80040200));
  EXPECT_THAT(oursForAll(), IsEmpty());
  EXPECT_THAT(writtenForUser(), IsEmpty());
  EXPECT_THAT(profile_.log(), HasSubstr("ERR Failed to register for this user: 80070005\r\n"));
}

TEST_F(RegistrationTest, ATypeLibraryThatFailsForAnotherReasonEndsIt) {
  const ImportPatch library(library_, "RegisterTypeLib", failTypeLibrary);
  EXPECT_EQ(call("DllRegisterServer"), SELFREG_E_TYPELIB);
  EXPECT_THAT(oursForAll(), IsEmpty());
  EXPECT_THAT(writtenForUser(), IsEmpty());
}

TEST_F(RegistrationTest, AClassThatFailsEndsItAndTakesTheTypeLibraryOut) {
  const ImportPatch values(library_, "RegSetValueExW", failWriting);
  EXPECT_EQ(call("DllRegisterServer"), SELFREG_E_CLASS);
  EXPECT_EQ(SELFREG_E_CLASS, static_cast<HRESULT>(0x80040201));
  EXPECT_THAT(oursForAll(), IsEmpty());
  EXPECT_THAT(writtenForUser(), IsEmpty());
}

// The system's program for it, in a process of its own.
DWORD regsvr32(const std::wstring& options) {
  std::wstring command = L"regsvr32.exe /s " + options + L" \"" + libraryPath() + L"\"";
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION process = {};
  if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                     &process) == FALSE) {
    return ~DWORD{0};
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = ~DWORD{0};
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

TEST(RegsvrTest, InAndOutLeavesTheWholeRegistryAsItWas) {
  const Host::ScratchProfile profile;
  const RegistryExport before = wholeRegistry();
  ASSERT_GT(before.size(), 1000u);
  EXPECT_EQ(regsvr32(L""), 0u);
  RegistryExport classes;
  for (const auto& entry : added(before, wholeRegistry())) {
    if (entry.first.find(L"Wow6432Node\\") != std::wstring::npos) {
      // The system's copy of the type library for 32-bit programs.
      EXPECT_TRUE(entry.first.find(L"Interface\\") != std::wstring::npos ||
                  entry.first.find(L"TypeLib\\") != std::wstring::npos);
      continue;
    }
    const std::wstring below = L"Classes\\";
    ASSERT_TRUE(entry.first.starts_with(below)) << toUtf8(entry.first);
    classes[entry.first.substr(below.size())] = entry.second;
  }
  EXPECT_EQ(withoutTypeLibrary(classes), expectedClasses());
  EXPECT_EQ(regsvr32(L"/u"), 0u);
  const RegistryExport after = wholeRegistry();
  EXPECT_THAT(added(before, after), IsEmpty());
  EXPECT_EQ(before.size(), after.size());
}

}  // namespace
}  // namespace Vantrel::Web
