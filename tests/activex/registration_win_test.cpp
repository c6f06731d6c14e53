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
#include "tests/activex/registered_keys_win.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web {
namespace {

using namespace ActiveX;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using TestSupport::expectedClasses;
using TestSupport::exportRegistry;
using TestSupport::ImportPatch;
using TestSupport::libraryPath;
using TestSupport::oursForAll;
using TestSupport::RegistryExport;
using TestSupport::withoutTypeLibrary;

constexpr wchar_t kClasses[] = L"Software\\Classes";

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
  HRESULT registerWithoutRights() const {
    const ImportPatch keys(library_, "RegCreateKeyExW", refuseForAllUsers);
    const ImportPatch library(library_, "RegisterTypeLib", refuseTypeLibrary);
    return call("DllRegisterServer");
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

TEST_F(RegistrationTest, AnotherVersionOfTheTypeLibraryStays) {
  constexpr wchar_t kOther[] =
      L"Software\\Classes\\TypeLib\\{36B9C4ED-8E71-46A7-8227-8FBD962ED169}\\2.7";
  HKEY key = nullptr;
  ASSERT_EQ(
      RegCreateKeyExW(HKEY_LOCAL_MACHINE, kOther, 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr),
      ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, kOther), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE,
                          L"Software\\Classes\\TypeLib\\{36B9C4ED-8E71-46A7-8227-8FBD962ED169}"),
            ERROR_SUCCESS);
}

TEST_F(RegistrationTest, OutWithoutInSucceeds) {
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_THAT(profile_.log(), Not(HasSubstr("LOG Unregistered")));
}

TEST_F(RegistrationTest, WithoutRightsItRegistersForThisUserAndSaysSo) {
  EXPECT_EQ(registerWithoutRights(), S_FALSE);
  EXPECT_THAT(oursForAll(), IsEmpty());
  RegistryExport written = withoutTypeLibrary(writtenForUser());
  for (const wchar_t* const parent : {L"CLSID", L"Interface", L"TypeLib"}) written.erase(parent);
  EXPECT_EQ(written, expectedClasses());
  EXPECT_THAT(profile_.log(), HasSubstr("ERR Failed to register for all users: 8002801c\r\n"));
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Registered for this user\r\n"));
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Unregistered for this user\r\n"));
}

TEST_F(RegistrationTest, ForAllUsersTheOneOfThisUserMakesRoom) {
  ASSERT_EQ(registerWithoutRights(), S_FALSE);
  ASSERT_THAT(writtenForUser(), Not(IsEmpty()));
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_THAT(writtenForUser(), IsEmpty());
  EXPECT_EQ(withoutTypeLibrary(oursForAll()), expectedClasses());
  EXPECT_THAT(profile_.log(), HasSubstr("LOG Unregistered for this user\r\n"));
}

TEST_F(RegistrationTest, RefusedForAllUsersTheOneOfThisUserIsWrittenAnew) {
  ASSERT_EQ(registerWithoutRights(), S_FALSE);
  const RegistryExport first = writtenForUser();
  // As an older library may have left it.
  HKEY key = nullptr;
  ASSERT_EQ(
      RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes\\Orvane.OrvaneWebCtrl.1\\OfAnOlderOne",
                      0, nullptr, 0, KEY_READ, nullptr, &key, nullptr),
      ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(registerWithoutRights(), S_FALSE);
  EXPECT_EQ(writtenForUser(), first);
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

}  // namespace
}  // namespace Vantrel::Web
