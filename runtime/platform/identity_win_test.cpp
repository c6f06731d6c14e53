// What the system tells of itself, with calls replaced by ours, whose results each case sets.
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

using Messages = std::vector<std::string>;

// The error that each replaced call leaves; 0 lets the system answer.
struct Faults {
  DWORD computer = 0, version = 0, owner = 0, roots = 0, space = 0, priority = 0;
  bool locale = false;
  DWORD rootsLength = 0;                  // told instead of the true one
  const wchar_t* computerName = nullptr;  // instead of the true one
  DWORD versionSize = 0;                  // what the last call asked for
} faults;

struct Domain {
  bool known = false;
  bool named = true;
  std::wstring asked;
  ULONG flags = 0;
  int freed = 0;
} domain;
DOMAIN_CONTROLLER_INFOW controller;

BOOL fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

BOOL WINAPI getComputerName(LPWSTR out, LPDWORD size) {
  if (faults.computer != 0) return fail(faults.computer);
  if (faults.computerName == nullptr) {
    return ov::real_call<decltype(&GetComputerNameW)>(L"kernel32.dll", "GetComputerNameW")(out,
                                                                                           size);
  }
  wcscpy(out, faults.computerName);
  return TRUE;
}

BOOL WINAPI getVersion(LPOSVERSIONINFOW info) {
  faults.versionSize = info->dwOSVersionInfoSize;
  if (faults.version != 0) return fail(faults.version);
  return ov::real_call<decltype(&GetVersionExW)>(L"kernel32.dll", "GetVersionExW")(info);
}

BOOL WINAPI getUserName(LPWSTR out, LPDWORD size) {
  if (faults.owner != 0) return fail(faults.owner);
  return ov::real_call<decltype(&GetUserNameW)>(L"advapi32.dll", "GetUserNameW")(out, size);
}

DWORD WINAPI getDriveStrings(DWORD size, LPWSTR out) {
  if (faults.roots != 0) return static_cast<DWORD>(fail(faults.roots));
  if (faults.rootsLength != 0) return faults.rootsLength;
  return ov::real_call<decltype(&GetLogicalDriveStringsW)>(L"kernel32.dll",
                                                           "GetLogicalDriveStringsW")(size, out);
}

BOOL WINAPI getSpace(LPCWSTR path, PULARGE_INTEGER own, PULARGE_INTEGER total,
                     PULARGE_INTEGER unused) {
  if (faults.space != 0) return fail(faults.space);
  return ov::real_call<decltype(&GetDiskFreeSpaceExW)>(L"kernel32.dll", "GetDiskFreeSpaceExW")(
      path, own, total, unused);
}

BOOL WINAPI setPriority(HANDLE thread, int priority) {
  if (faults.priority != 0) return fail(faults.priority);
  return ov::real_call<decltype(&SetThreadPriority)>(L"kernel32.dll", "SetThreadPriority")(
      thread, priority);
}

wchar_t* setLocale(int category, const wchar_t* name) {
  if (faults.locale) return nullptr;
  return ov::real_call<decltype(&_wsetlocale)>(L"msvcrt.dll", "_wsetlocale")(category, name);
}

DWORD WINAPI getDomain(LPCWSTR, LPCWSTR name, GUID*, LPCWSTR, ULONG flags,
                       PDOMAIN_CONTROLLER_INFOW* info) {
  static wchar_t flat[] = L"Acm\u20AC";
  domain.asked = name;
  domain.flags = flags;
  if (!domain.known) return ERROR_NO_SUCH_DOMAIN;
  controller.DomainName = domain.named ? flat : nullptr;
  *info = &controller;
  return 0;
}

}  // namespace

// Not declared as imported, so the linker takes ours instead of the library's.
extern "C" NET_API_STATUS WINAPI NetApiBufferFree(LPVOID buffer) {
  EXPECT_EQ(&controller, buffer);
  ++domain.freed;
  return 0;
}

extern "C" {
decltype(&GetComputerNameW) __imp_GetComputerNameW = getComputerName;
decltype(&GetVersionExW) __imp_GetVersionExW = getVersion;
decltype(&GetUserNameW) __imp_GetUserNameW = getUserName;
decltype(&GetLogicalDriveStringsW) __imp_GetLogicalDriveStringsW = getDriveStrings;
decltype(&GetDiskFreeSpaceExW) __imp_GetDiskFreeSpaceExW = getSpace;
decltype(&SetThreadPriority) __imp_SetThreadPriority = setPriority;
decltype(&_wsetlocale) __imp__wsetlocale = setLocale;
decltype(&DsGetDcNameW) __imp_DsGetDcNameW = getDomain;
}

namespace {

class IdentityTest : public ::testing::Test {
 protected:
  IdentityTest() { reset(); }
  ~IdentityTest() override { reset(); }
  static void reset() {
    faults = {};
    domain = {};
  }
  char out_[520] = "old";
  ov::CapturedLog log_;
};

TEST_F(IdentityTest, ComputerName) {
  faults.computer = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov::computer_name(out_, sizeof out_));
  faults.computer = 0;
  char name[MAX_COMPUTERNAME_LENGTH + 1];
  DWORD size = sizeof name;
  ASSERT_TRUE(GetComputerNameA(name, &size));
  EXPECT_EQ(0, ov_platform_hostname(out_, sizeof out_));
  EXPECT_STREQ(name, out_);
  char user[64];
  ov_snprintf(user, sizeof user, "%s\\Bob", name);
  EXPECT_EQ(0, ov_platform_normalize_user_name_ex(user, sizeof user, 3));
  EXPECT_STREQ("bob", user);
  EXPECT_EQ(L"", domain.asked);
}

// The code page of the system has no such letters.
TEST_F(IdentityTest, NamesKeepLettersOfAnyScript) {
  faults.computerName = L"\u0416\u20AC";
  EXPECT_EQ(0, ov::computer_name(out_, sizeof out_));
  EXPECT_STREQ("\xD0\x96\xE2\x82\xAC", out_);
  EXPECT_EQ(122, ov::computer_name(out_, 5));
  EXPECT_EQ(1355, ov::flat_domain_name("\xD0\x96.example", out_, sizeof out_));
  EXPECT_EQ(L"\u0416.example", domain.asked);
}

TEST_F(IdentityTest, DomainsAreAskedForTheirFlatName) {
  EXPECT_EQ(1355, ov::flat_domain_name("acme.example", out_, sizeof out_));
  EXPECT_EQ(L"acme.example", domain.asked);
  EXPECT_EQ(0x80000000U, domain.flags);
  EXPECT_EQ(0, domain.freed);
  domain.known = true;
  EXPECT_EQ(0, ov::flat_domain_name("acme.example", out_, sizeof out_));
  EXPECT_STREQ("Acm\xE2\x82\xAC", out_);
  EXPECT_EQ(1, domain.freed);
  EXPECT_EQ(122, ov::flat_domain_name("acme.example", out_, 4));
  EXPECT_EQ(2, domain.freed);
  domain.named = false;
  EXPECT_EQ(1355, ov::flat_domain_name("acme.example", out_, sizeof out_));
  EXPECT_EQ(3, domain.freed);
}

TEST_F(IdentityTest, UserOfADomain) {
  const auto normalized = [] {
    char name[32] = "Bob@acme.example";
    EXPECT_EQ(0, ov_platform_normalize_user_name(name, sizeof name));
    return std::string(name);
  };
  ov_platform_init();
  EXPECT_EQ("ACME.EXAMPLE\\bob", normalized());
  EXPECT_EQ(Messages{"ERR Unable to locate domain acme.example.  Leaving name as is."},
            log_.take());
  domain.known = true;
  EXPECT_EQ("ACM\xE2\x82\xAC\\bob", normalized());
  domain.known = false;
  EXPECT_EQ("ACM\xE2\x82\xAC\\bob", normalized());
  ov_platform_fini();
}

TEST_F(IdentityTest, SystemVersion) {
  OSVERSIONINFOW info = {};
  info.dwOSVersionInfoSize = sizeof info;
  ASSERT_TRUE(GetVersionExW(&info));
  const std::string start = "Microsoft Windows " + std::to_string(info.dwMajorVersion) + "." +
                            std::to_string(info.dwMinorVersion) + " ";
  EXPECT_EQ(0, ov_platform_os(out_, sizeof out_));
  EXPECT_EQ(0U, std::string(out_).find(start));
  EXPECT_EQ(284U, faults.versionSize);
  faults.version = ERROR_INVALID_PARAMETER;
  EXPECT_EQ(87, ov_platform_os(out_, sizeof out_));
}

TEST_F(IdentityTest, ProcessOwner) {
  EXPECT_EQ(0, ov_platform_get_process_uname(out_, sizeof out_));
  EXPECT_STRNE("", out_);
  EXPECT_EQ(122, ov_platform_get_process_uname(out_, 1));
  EXPECT_EQ(22, ov_platform_get_process_uname(nullptr, 1));
  ov_process_setenv("USER", out_);
  faults.owner = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_platform_get_process_uname(out_, sizeof out_));
  ov_process_setenv("USER", "bob");
  EXPECT_EQ(0, ov_platform_usr(out_, sizeof out_));
  EXPECT_STREQ("bob", out_);
  EXPECT_EQ(Messages{"LOG Process owner and %USER% name mismatch, using env name"}, log_.take());
}

TEST_F(IdentityTest, Locale) {
  ov_locale locale;
  EXPECT_EQ(0, ov_platform_getlocale(&locale));
  EXPECT_STREQ("C", locale.language);
  EXPECT_STREQ("", locale.country);
  faults.locale = true;
  EXPECT_EQ(28683, ov_platform_getlocale(&locale));
}

TEST_F(IdentityTest, ThreadPriority) {
  EXPECT_EQ(0, ov_platform_thread_init());
  EXPECT_EQ(1, GetThreadPriority(GetCurrentThread()));
  SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
  faults.priority = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_platform_thread_init());
}

TEST_F(IdentityTest, Drives) {
  ov_drive* drives = nullptr;
  ASSERT_EQ(0, ov_platform_drives(&drives));
  ASSERT_NE(nullptr, drives);
  EXPECT_STREQ("C:/", drives->path);
  ov_platform_free_drives(&drives);
  faults.roots = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_platform_drives(&drives));
  EXPECT_EQ(nullptr, drives);
  faults.roots = 0;
  faults.rootsLength = 5000;
  EXPECT_EQ(28677, ov_platform_drives(&drives));
}

TEST_F(IdentityTest, Space) {
  ov_mount* mounts = nullptr;
  ASSERT_EQ(0, ov_platform_mnt(&mounts, "C:/"));
  ASSERT_NE(nullptr, mounts);
  EXPECT_LT(0U, mounts->total);
  EXPECT_LT(0U, mounts->free);
  EXPECT_EQ(mounts->total - mounts->free, mounts->used);
  ov_platform_free_mnt(&mounts);
  EXPECT_EQ(3, ov_platform_mnt(&mounts, "Q:/"));
  EXPECT_EQ(22, ov_platform_mnt(&mounts, "\xFF"));
  faults.space = ERROR_NOT_READY;
  ASSERT_EQ(0, ov_platform_mnt(&mounts, nullptr));
  for (const ov_mount* mount = mounts; mount != nullptr; mount = mount->next) {
    EXPECT_EQ(21, mount->error);
    EXPECT_EQ(0U, mount->total);
  }
  ov_platform_free_mnt(&mounts);
  faults.space = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_platform_mnt(&mounts, nullptr));
  EXPECT_EQ(nullptr, mounts);
}

}  // namespace
