// The library's entries for regsvr32: in, for all users where that is allowed and else for this one
// alone, and out, wherever it was.
//
// Windows looks for a class in this user's part first and then in that of all users; Wine 8 looks
// in the latter only, so that there the keys of one user could be seen, but not what comes of them.

#include <windows.h>
#include <comcat.h>
#include <oleauto.h>
#include <olectl.h>

#include <algorithm>
#include <string>

#include "browsers/activex/class_registry_win.h"
#include "browsers/activex/identifiers.h"
#include "browsers/activex/module_count_win.h"
#include "browsers/activex/module_resources_win.h"
#include "browsers/activex/registry_entries_win.h"
#include "dialogs/dialog_com_win.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr SYSKIND kSystem = SYS_WIN64;

// What a step came to: `code` is what regsvr32 is told of it, `reason` what the system said.
struct Outcome {
  HRESULT code = S_OK;
  HRESULT reason = S_OK;
  bool ok() const { return SUCCEEDED(reason); }
  // Without administrator's rights. The type library's functions have a code of their own for it.
  bool refused() const { return reason == E_ACCESSDENIED || reason == TYPE_E_REGISTRYACCESS; }
};

Outcome outcome(HRESULT reason, HRESULT codeOfFailure) {
  return {SUCCEEDED(reason) ? S_OK : codeOfFailure, reason};
}

const char* nameOf(Place place) {
  return place == Place::kAllUsers ? "all users" : "this user";
}

// The system's own function writes for all users only.
HRESULT registerTypeLibrary(Place place, const std::wstring& path) {
  if (place == Place::kThisUser) return writeEntries(place, typeLibraryEntries(path));
  ComPointer<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.put());
  if (FAILED(result)) return result;
  std::wstring file = path;
  std::wstring directory = directoryOf(path);
  return RegisterTypeLib(library.get(), file.data(), directory.data());
}

// A library that was never registered is one that is out already.
HRESULT unregisterTypeLibrary(Place place) {
  const std::vector<std::wstring> keys = typeLibraryKeys();
  if (place == Place::kAllUsers && keyExists(place, keys.front())) {
    const HRESULT result = UnRegisterTypeLib(kTypeLibraryId, kTypeLibraryMajor, kTypeLibraryMinor,
                                             kTypeLibraryLocale, kSystem);
    if (FAILED(result)) return result;
  }
  return removeKeys(place, keys);
}

// By the system's manager of categories for all users; for one user by the keys it would write.
// Without a category the control works, in a container that asks the user first.
void enterCategories(Place place) {
  OV_DEBUG("OrvaneWebCtrl RegisterCLSIDInCategory()");
  if (place == Place::kThisUser) {
    writeEntries(place, categoryEntries());
    return;
  }
  const ComApartment apartment("OrvaneWebCtrl RegisterCLSIDInCategory() failed to initialize COM");
  ComPointer<ICatRegister> manager;
  if (FAILED(CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                              IID_ICatRegister, manager.putVoid()))) {
    return;
  }
  for (CATID category : {kSafeForScripting, kSafeForInitializing}) {
    manager->RegisterClassImplCategories(kControlClassId, 1, &category);
  }
}

Outcome enter(Place place, const std::wstring& path) {
  const Outcome library = outcome(registerTypeLibrary(place, path), SELFREG_E_TYPELIB);
  if (!library.ok()) return library;
  OV_DEBUG("COrvaneWebCtrl::COrvaneWebCtrlFactory::UpdateRegistry()");
  const Outcome classes = outcome(writeEntries(place, classEntries(path)), SELFREG_E_CLASS);
  if (classes.ok()) enterCategories(place);
  return classes;
}

Outcome leave(Place place) {
  const Outcome library = outcome(unregisterTypeLibrary(place), SELFREG_E_TYPELIB);
  const Outcome classes = outcome(removeKeys(place, classKeys()), SELFREG_E_CLASS);
  return library.ok() ? classes : library;
}

// Nothing half done stays behind.
Outcome enterWhole(Place place, const std::wstring& path) {
  const auto result =
      guarded<Outcome>({SELFREG_E_CLASS, E_OUTOFMEMORY}, [&] { return enter(place, path); });
  if (!result.ok()) {
    leave(place);
    return result;
  }
  ov_log("Registered for %s", nameOf(place));
  return result;
}

bool isEntered(Place place) {
  const auto exists = [place](const std::wstring& key) { return keyExists(place, key); };
  return std::ranges::any_of(classKeys(), exists) || std::ranges::any_of(typeLibraryKeys(), exists);
}

HRESULT takeOut(Place place) {
  const bool there = keyExists(place, classKeys().front());
  const Outcome left = leave(place);
  if (!left.ok()) {
    ov_err("Failed to unregister for %s: %x", nameOf(place), static_cast<unsigned>(left.reason));
    return left.code;
  }
  if (there) ov_log("Unregistered for %s", nameOf(place));
  return S_OK;
}

// S_OK for all users, S_FALSE for this user alone. What this user has from before goes first: it
// would win over what all users get, and on Windows the functions of the system, which write
// through the merged view, would put theirs into the keys that are there already. Wine has no such
// view.
HRESULT registerServer() {
  const std::wstring path = modulePath();
  if (isEntered(Place::kThisUser)) {
    const HRESULT former = takeOut(Place::kThisUser);
    if (FAILED(former)) return former;
  }
  const Outcome allUsers = enterWhole(Place::kAllUsers, path);
  if (allUsers.ok()) return S_OK;
  ov_err("Failed to register for all users: %x", static_cast<unsigned>(allUsers.reason));
  if (!allUsers.refused()) return allUsers.code;
  const Outcome thisUser = enterWhole(Place::kThisUser, path);
  if (thisUser.ok()) return S_FALSE;
  ov_err("Failed to register for this user: %x", static_cast<unsigned>(thisUser.reason));
  return thisUser.code;
}

HRESULT unregisterServer() {
  OV_DEBUG("COrvaneWebCtrl::COrvaneWebCtrlFactory::UpdateRegistry()");
  HRESULT result = S_OK;
  for (const Place place : {Place::kThisUser, Place::kAllUsers}) {
    const HRESULT left = takeOut(place);
    if (FAILED(left)) result = left;
  }
  return result;
}

}  // namespace

}  // namespace Vantrel::Web::ActiveX

STDAPI DllRegisterServer() {
  using namespace Vantrel::Web;
  const ActiveX::ModuleReference registering;
  return guarded(SELFREG_E_CLASS, ActiveX::registerServer);
}

STDAPI DllUnregisterServer() {
  using namespace Vantrel::Web;
  const ActiveX::ModuleReference registering;
  return guarded(SELFREG_E_CLASS, ActiveX::unregisterServer);
}
