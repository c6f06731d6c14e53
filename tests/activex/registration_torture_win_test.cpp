// Registration again and again, with another call of the platform failing each time, until none is
// left. Whatever fails, nothing half done stays, no key stays open, and the next time works.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>
#include <olectl.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/activex/activex_fixture_win.h"
#include "tests/activex/registered_keys_win.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::ImportPatch;

// More calls than a registration makes.
constexpr int kMostCalls = 5000;

// Which call is to fail, counted from now on, and with what.
struct Failure {
  int left = 0;  // 0 while nothing is to fail
  LSTATUS status = ERROR_SUCCESS;
  const char* failed = nullptr;
};
Failure failure;

bool fails(const char* name) {
  if (failure.left == 0 || --failure.left != 0) return false;
  failure.failed = name;
  return true;
}

HRESULT failureResult() {
  return HRESULT_FROM_WIN32(static_cast<unsigned long>(failure.status));
}

// Keys that the library holds open. Not all handles of the process: Wine's own functions for type
// libraries and categories leave some open with each call.
int openKeys = 0;

LSTATUS opened(LSTATUS status) {
  if (status == ERROR_SUCCESS) ++openKeys;
  return status;
}

LSTATUS WINAPI createKey(HKEY root, LPCWSTR key, DWORD reserved, LPWSTR keyClass, DWORD options,
                         REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                         LPDWORD disposition) {
  if (fails("RegCreateKeyExW")) return failure.status;
  return opened(RegCreateKeyExW(root, key, reserved, keyClass, options, access, security, result,
                                disposition));
}

LSTATUS WINAPI setValue(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) {
  if (fails("RegSetValueExW")) return failure.status;
  return RegSetValueExW(key, name, reserved, type, data, size);
}

LSTATUS WINAPI openKey(HKEY root, LPCWSTR key, DWORD options, REGSAM access, PHKEY result) {
  if (fails("RegOpenKeyExW")) return failure.status;
  return opened(RegOpenKeyExW(root, key, options, access, result));
}

LSTATUS WINAPI closeKey(HKEY key) {
  --openKeys;
  return RegCloseKey(key);
}

LSTATUS WINAPI deleteTree(HKEY root, LPCWSTR key) {
  if (fails("RegDeleteTreeW")) return failure.status;
  return RegDeleteTreeW(root, key);
}

HRESULT WINAPI loadLibrary(LPCOLESTR path, REGKIND kind, ITypeLib** library) {
  if (fails("LoadTypeLibEx")) return failureResult();
  return LoadTypeLibEx(path, kind, library);
}

HRESULT WINAPI registerLibrary(ITypeLib* library, OLECHAR* path, OLECHAR* help) {
  if (fails("RegisterTypeLib")) return failureResult();
  return RegisterTypeLib(library, path, help);
}

HRESULT WINAPI unregisterLibrary(REFGUID id, WORD major, WORD minor, LCID locale, SYSKIND kind) {
  if (fails("UnRegisterTypeLib")) return failureResult();
  return UnRegisterTypeLib(id, major, minor, locale, kind);
}

HRESULT WINAPI createInstance(REFCLSID id, LPUNKNOWN outer, DWORD context, REFIID interfaceId,
                              LPVOID* object) {
  if (fails("CoCreateInstance")) return failureResult();
  return CoCreateInstance(id, outer, context, interfaceId, object);
}

DWORD WINAPI moduleFileName(HMODULE module, LPWSTR name, DWORD size) {
  if (fails("GetModuleFileNameW")) return 0;
  return GetModuleFileNameW(module, name, size);
}

void* allocate(size_t size) {
  return fails("malloc") ? nullptr : std::malloc(size);
}

class RegistrationTortureTest : public ActiveXTest {
 protected:
  void SetUp() override {
    ActiveXTest::SetUp();
    patch("RegCreateKeyExW", createKey);
    patch("RegSetValueExW", setValue);
    patch("RegOpenKeyExW", openKey);
    patch("RegCloseKey", closeKey);
    patch("RegDeleteTreeW", deleteTree);
    patch("LoadTypeLibEx", loadLibrary);
    patch("RegisterTypeLib", registerLibrary);
    patch("UnRegisterTypeLib", unregisterLibrary);
    patch("CoCreateInstance", createInstance);
    patch("GetModuleFileNameW", moduleFileName);
    ASSERT_TRUE(nothingOfOurs());
    // Once for what the system makes at a first time.
    ASSERT_EQ(callEntry("DllRegisterServer"), S_OK);
    ASSERT_EQ(callEntry("DllUnregisterServer"), S_OK);
  }
  void TearDown() override {
    failure = {};
    EXPECT_EQ(callEntry("DllUnregisterServer"), S_OK);
    patches_.clear();
    ActiveXTest::TearDown();
  }

  // Whether neither all users nor this one have a key of ours.
  static bool nothingOfOurs() {
    for (const std::wstring& key : TestSupport::registeredKeys()) {
      for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        HKEY found = nullptr;
        if (RegOpenKeyExW(root, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ, &found) !=
            ERROR_SUCCESS) {
          continue;
        }
        RegCloseKey(found);
        return false;
      }
    }
    return true;
  }

  HRESULT round(const char* entry, const Failure& planned, const std::function<void()>& prepare,
                const std::function<void(HRESULT)>& check) {
    prepare();
    failure = planned;
    const HRESULT result = callEntry(entry);
    failure.left = 0;
    SCOPED_TRACE(std::to_string(planned.left) + ": " +
                 (failure.failed != nullptr ? failure.failed : "none"));
    check(result);
    return result;
  }

  // `prepare`, then the entry with its n-th call failing, then `check`, for every n.
  void torture(const char* entry, LSTATUS status, const std::function<void()>& prepare,
               const std::function<void(HRESULT)>& check) {
    int failures = 0;
    for (int n = 1; n <= kMostCalls && !HasFailure(); ++n) {
      const HRESULT result = round(entry, {n, status, nullptr}, prepare, check);
      EXPECT_EQ(openKeys, 0) << n;
      if (failure.failed == nullptr) {
        EXPECT_EQ(result, S_OK);
        EXPECT_GT(failures, 5);  // else nothing was proven
        return;
      }
      ++failures;
    }
    if (!HasFailure()) FAIL() << "it never ends";
  }

  // In fails with a code or works; then out leaves nothing.
  void tortureIn(LSTATUS status) {
    torture(
        "DllRegisterServer", status, [] {},
        [this](HRESULT result) {
          if (FAILED(result)) {
            EXPECT_TRUE(result == SELFREG_E_TYPELIB || result == SELFREG_E_CLASS);
            EXPECT_TRUE(nothingOfOurs());
          }
          EXPECT_EQ(callEntry("DllUnregisterServer"), S_OK);
          EXPECT_TRUE(nothingOfOurs());
        });
  }

  // Out says so when something stays, and then works at the second time.
  void tortureOut(LSTATUS status) {
    torture(
        "DllUnregisterServer", status, [this] { EXPECT_EQ(callEntry("DllRegisterServer"), S_OK); },
        [this](HRESULT result) {
          EXPECT_TRUE(SUCCEEDED(result) || result == SELFREG_E_TYPELIB ||
                      result == SELFREG_E_CLASS);
          EXPECT_TRUE(nothingOfOurs() || FAILED(result));
          EXPECT_EQ(callEntry("DllUnregisterServer"), S_OK);
          EXPECT_TRUE(nothingOfOurs());
        });
  }

 private:
  template <class Function>
  void patch(const char* name, Function* replacement) {
    patches_.push_back(std::make_unique<ImportPatch>(library(), name, replacement));
  }

  std::vector<std::unique_ptr<ImportPatch>> patches_;
};

TEST_F(RegistrationTortureTest, InWhenTheSystemFails) {
  const ImportPatch memory(library(), "malloc", allocate);
  tortureIn(ERROR_NO_SYSTEM_RESOURCES);
}

TEST_F(RegistrationTortureTest, InWhenTheSystemRefuses) {
  tortureIn(ERROR_ACCESS_DENIED);
}

TEST_F(RegistrationTortureTest, OutWhenTheSystemFails) {
  tortureOut(ERROR_NO_SYSTEM_RESOURCES);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
