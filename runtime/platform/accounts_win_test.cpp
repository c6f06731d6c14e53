// The profile of a user as this machine's registry has it, for an account that only the replaced
// look-ups know, and what can fail on the way to it.
#include <windows.h>
#include <lm.h>
#include <sddl.h>

#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_paths.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

// An account for each process, since cases run side by side in one registry.
const std::wstring kSid = L"S-1-5-21-11-22-33-" + std::to_wstring(GetCurrentProcessId());
const std::wstring kKey = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProfileList\)" + kSid;
constexpr wchar_t kValue[] = L"ProfileImagePath";

struct Faults {
  DWORD lookup = 0;
  DWORD convert = 0;
  bool longSid = false;
  DWORD expand = 0;
} faults;
std::wstring lookedUp;
wchar_t emptyHome[] = L"";
USER_INFO_3 userInfo;

BOOL fails(DWORD error) {
  SetLastError(error);
  return error == 0 ? TRUE : FALSE;
}

BOOL WINAPI lookupAccountName(LPCWSTR, LPCWSTR name, PSID sid, LPDWORD size, LPWSTR domain,
                              LPDWORD domainSize, PSID_NAME_USE use) {
  lookedUp = name;
  if (faults.lookup != 0) return fails(faults.lookup);
  SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
  PSID made = nullptr;
  if (!AllocateAndInitializeSid(&authority, 5, 21, 11, 22, 33, GetCurrentProcessId(), 0, 0, 0,
                                &made))
    return FALSE;
  const BOOL copied = CopySid(*size, sid, made);
  FreeSid(made);
  domain[0] = L'\0';
  *domainSize = 0;
  *use = SidTypeUser;
  return copied;
}

BOOL WINAPI convertSid(PSID, LPWSTR* text) {
  if (faults.convert != 0) return fails(faults.convert);
  const std::wstring sid = faults.longSid ? std::wstring(600, L'9') : kSid;
  *text = static_cast<LPWSTR>(LocalAlloc(LMEM_FIXED, (sid.size() + 1) * sizeof(wchar_t)));
  wcscpy(*text, sid.c_str());
  return TRUE;
}

DWORD WINAPI expandStrings(LPCWSTR from, LPWSTR to, DWORD size) {
  if (faults.expand != 0) {
    SetLastError(faults.expand);
    return 0;
  }
  return ov::real_call<decltype(&ExpandEnvironmentStringsW)>(
      L"kernel32.dll", "ExpandEnvironmentStringsW")(from, to, size);
}

}  // namespace

// These two are not declared as imported, so the linker takes ours instead of the library's.
extern "C" NET_API_STATUS WINAPI NetUserGetInfo(LPCWSTR, LPCWSTR, DWORD, LPBYTE* info) {
  userInfo.usri3_home_dir = emptyHome;
  *info = reinterpret_cast<LPBYTE>(&userInfo);
  return 0;
}

extern "C" NET_API_STATUS WINAPI NetApiBufferFree(LPVOID) {
  return 0;
}

extern "C" {
decltype(&LookupAccountNameW) __imp_LookupAccountNameW = lookupAccountName;
decltype(&ConvertSidToStringSidW) __imp_ConvertSidToStringSidW = convertSid;
decltype(&ExpandEnvironmentStringsW) __imp_ExpandEnvironmentStringsW = expandStrings;
}

namespace {

class UserProfileTest : public ::testing::Test {
 protected:
  UserProfileTest() { faults = {}; }
  ~UserProfileTest() override { RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey.c_str()); }

  // Keeps exactly these characters, with a terminator only if they end in one.
  static void keep(const std::wstring& value, const wchar_t* name = kValue) {
    HKEY key = nullptr;
    ASSERT_EQ(0, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                 nullptr, &key, nullptr));
    EXPECT_EQ(
        0, RegSetValueExW(key, name, 0, REG_EXPAND_SZ, reinterpret_cast<const BYTE*>(value.data()),
                          static_cast<DWORD>(value.size() * sizeof(wchar_t))));
    RegCloseKey(key);
  }
  ov_rc look() { return ov_path_user_home_dir("bob", out_, sizeof out_); }

  char out_[OV_PATH_SIZE] = "";
};

TEST_F(UserProfileTest, VariablesInThePathAreExpanded) {
  SetEnvironmentVariableW(L"OV_PROFILES", L"D:\\profiles");
  keep(std::wstring(L"%OV_PROFILES%\\b\u00F6b\0", 18));
  EXPECT_EQ(0, look());
  EXPECT_STREQ(
      "D:\\profiles\\b\xC3\xB6"
      "b",
      out_);
  EXPECT_EQ(L"bob", lookedUp);
}

TEST_F(UserProfileTest, PathNeedNotBeTerminated) {
  keep(L"D:\\bob");
  EXPECT_EQ(0, look());
  EXPECT_STREQ("D:\\bob", out_);
  EXPECT_EQ(122, ov_path_user_home_dir("bob", out_, 6));
}

TEST_F(UserProfileTest, MissingKeyAndValue) {
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, look());
  keep(L"x", L"Other");
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, look());
}

TEST_F(UserProfileTest, ResultAbove520CharactersIs14) {
  SetEnvironmentVariableW(L"OV_PROFILES", std::wstring(300, L'x').c_str());
  keep(L"%OV_PROFILES%%OV_PROFILES%");
  EXPECT_EQ(14, look());
  keep(std::wstring(600, L'x'));
  EXPECT_EQ(ERROR_MORE_DATA, look());
}

TEST_F(UserProfileTest, FailuresOnTheWay) {
  keep(L"D:\\bob");
  faults.lookup = ERROR_NONE_MAPPED;
  EXPECT_EQ(ERROR_NONE_MAPPED, look());
  faults = {};
  faults.convert = ERROR_INVALID_SID;
  EXPECT_EQ(ERROR_INVALID_SID, look());
  faults = {};
  faults.longSid = true;
  EXPECT_EQ(122, look());
  faults = {};
  faults.expand = ERROR_NOT_ENOUGH_MEMORY;
  EXPECT_EQ(ERROR_NOT_ENOUGH_MEMORY, look());
  faults = {};
  EXPECT_EQ(0, look());
}

}  // namespace
