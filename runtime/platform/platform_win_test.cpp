// What the system tells: wide paths, the present and the home directory, variables, processes, the
// registry, sockets. Look-ups that need a domain are replaced by ours.
#include <winsock2.h>
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

struct Accounts {
  NET_API_STATUS status = 0;
  std::wstring home;
  bool domain = false;
  std::wstring server, user;  // what was asked for
  int freed = 0;
} accounts;
DOMAIN_CONTROLLER_INFOW controller;
USER_INFO_3 userInfo;

DWORD WINAPI dsGetDcName(LPCWSTR, LPCWSTR domain, GUID*, LPCWSTR, ULONG,
                         PDOMAIN_CONTROLLER_INFOW* info) {
  static wchar_t name[] = L"\\\\controller";
  if (!accounts.domain || std::wstring(domain) != L"ACME") return ERROR_NO_SUCH_DOMAIN;
  controller.DomainControllerName = name;
  *info = &controller;
  return 0;
}

}  // namespace

// These two are not declared as imported, so the linker takes ours instead of the library's.
extern "C" NET_API_STATUS WINAPI NetUserGetInfo(LPCWSTR server, LPCWSTR user, DWORD, LPBYTE* info) {
  accounts.server = server == nullptr ? L"" : server;
  accounts.user = user;
  userInfo.usri3_home_dir = accounts.home.data();
  *info = accounts.status == 0 || accounts.status == ERROR_MORE_DATA
              ? reinterpret_cast<LPBYTE>(&userInfo)
              : nullptr;
  return accounts.status;
}

extern "C" NET_API_STATUS WINAPI NetApiBufferFree(LPVOID) {
  ++accounts.freed;
  return 0;
}

extern "C" {
decltype(&DsGetDcNameW) __imp_DsGetDcNameW = dsGetDcName;
}

namespace {

std::wstring widened(const std::string& path) {
  wchar_t wide[520];
  size_t bytes = sizeof wide;
  EXPECT_EQ(0, ov_path_widen_path(path.c_str(), wide, &bytes));
  EXPECT_EQ((wcslen(wide) + 1) * sizeof(wchar_t), bytes);
  return wide;
}

TEST(WidePathTest, Forms) {
  EXPECT_EQ(L"/a/b", widened("/a/b"));
  EXPECT_EQ(L"C:/a./b..", widened("C:/a./b.."));
  EXPECT_EQ(LR"(\\?\C:\aaaa\bbbb)", widened("C:/aaaa./bbbb.."));
  EXPECT_EQ(LR"(\\?\UNC\host\share\d)", widened("//host/share/d"));
  EXPECT_EQ(L"relative/\u00E4/x", widened("relative/\xC3\xA4/x"));
}

TEST(WidePathTest, Failures) {
  wchar_t wide[8];
  size_t bytes = sizeof wide;
  EXPECT_EQ(122, ov_path_widen_path("C:/long/enough", wide, &bytes));
  EXPECT_EQ(sizeof(wchar_t) * 19, bytes);
  bytes = sizeof wide;
  EXPECT_EQ(28677, ov_path_widen_path(("C:/" + std::string(530, 'x')).c_str(), wide, &bytes));
  EXPECT_EQ(22, ov_path_widen_path("\xFF", wide, &bytes));
  EXPECT_EQ(22, ov_path_widen_path(nullptr, wide, &bytes));
  EXPECT_EQ(22, ov_path_widen_path("a", wide, nullptr));
}

class UserHomeTest : public ::testing::Test {
 protected:
  UserHomeTest() { accounts = {}; }
  char out_[OV_PATH_SIZE] = "";
};

TEST_F(UserHomeTest, FromTheAccount) {
  accounts.home = L"D:\\home\\\u00E4";
  EXPECT_EQ(0, ov_path_user_home_dir("bob", out_, sizeof out_));
  EXPECT_STREQ("D:\\home\\\xC3\xA4", out_);
  EXPECT_EQ(L"", accounts.server);
  EXPECT_EQ(L"bob", accounts.user);
  EXPECT_EQ(1, accounts.freed);
  EXPECT_EQ(122, ov_path_user_home_dir("bob", out_, 4));
}

TEST_F(UserHomeTest, OfADomain) {
  accounts.home = L"D:\\home";
  accounts.domain = true;
  EXPECT_EQ(0, ov_path_user_home_dir("ACME\\bob", out_, sizeof out_));
  EXPECT_EQ(L"\\\\controller", accounts.server);
  EXPECT_EQ(L"bob", accounts.user);
  EXPECT_EQ(2, accounts.freed);
  EXPECT_EQ(0, ov_path_user_home_dir("NONE\\bob", out_, sizeof out_));
  EXPECT_EQ(L"", accounts.server);
  EXPECT_EQ(L"NONE\\bob", accounts.user);
  EXPECT_EQ(0, ov_path_user_home_dir("\\bob", out_, sizeof out_));
  EXPECT_EQ(L"\\bob", accounts.user);
}

TEST_F(UserHomeTest, FromTheProfile) {
  wchar_t user[256];
  DWORD size = 256;
  ASSERT_TRUE(GetUserNameW(user, &size));
  char name[256];
  size_t bytes = sizeof name;
  ASSERT_EQ(0, ov_wchar_to_utf8(user, name, &bytes));
  EXPECT_EQ(0, ov_path_user_home_dir(name, out_, sizeof out_));
  EXPECT_EQ(nullptr, strchr(out_, '%'));
  EXPECT_NE(nullptr, strstr(out_, name));
  EXPECT_EQ(1332, ov_path_user_home_dir("nobody-of-this-name", out_, sizeof out_));
}

TEST_F(UserHomeTest, Failures) {
  accounts.status = 2221;
  EXPECT_EQ(2221, ov_path_user_home_dir("bob", out_, sizeof out_));
  EXPECT_EQ(0, accounts.freed);
  accounts.status = ERROR_MORE_DATA;
  EXPECT_EQ(234, ov_path_user_home_dir("bob", out_, sizeof out_));
  EXPECT_EQ(1, accounts.freed);
  EXPECT_EQ(122, ov_path_user_home_dir(std::string(1024, 'x').c_str(), out_, sizeof out_));
  EXPECT_EQ(22, ov_path_user_home_dir(nullptr, out_, sizeof out_));
  EXPECT_EQ(22, ov_path_user_home_dir("bob", nullptr, 0));
}

TEST(EnvironmentTest, Variables) {
  char out[16];
  SetEnvironmentVariableW(L"OV_TEST_\u00E4", L"v\u00E4lue");
  EXPECT_EQ(0, ov_process_getenv("OV_TEST_\xC3\xA4", out, sizeof out));
  EXPECT_STREQ("v\xC3\xA4lue", out);
  EXPECT_EQ(28677, ov_process_getenv("OV_TEST_\xC3\xA4", out, 5));
  EXPECT_EQ(122, ov_process_getenv("OV_TEST_\xC3\xA4", out, 6));  // six characters, seven bytes
  EXPECT_EQ(0, ov_process_getenv("OV_TEST_\xC3\xA4", out, 7));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", out, sizeof out));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", nullptr, 1));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", out, 0));
}

TEST(EnvironmentTest, NullNameIsCountedWhenAssertionsAreOff) {
  const int32_t before = g_ov_asserts_skipped;
  char out[4];
  EXPECT_EQ(22, ov_process_getenv(nullptr, out, sizeof out));
  EXPECT_EQ(before, g_ov_asserts_skipped);
  g_ov_asserts_active = 0;
  EXPECT_EQ(22, ov_process_getenv(nullptr, out, sizeof out));
  g_ov_asserts_active = 1;
  EXPECT_EQ(before + 1, g_ov_asserts_skipped);
}

TEST(ProcessTest, ExitIsSeenOnce) {
  wchar_t command[] = L"cmd.exe /c exit 7";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started;
  ASSERT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                             nullptr, &startup, &started));
  ov_process process = {};
  process.process = started.hProcess;
  process.thread = started.hThread;
  process.user_token = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  int32_t state = 9;
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(0, state);
  EXPECT_EQ(9, code);
  ResumeThread(started.hThread);
  WaitForSingleObject(started.hProcess, INFINITE);
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(1, state);
  EXPECT_EQ(7, code);
  EXPECT_EQ(nullptr, process.process);
  EXPECT_EQ(nullptr, process.thread);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process.user_token);
  EXPECT_EQ(6, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(22, ov_process_exited(nullptr, &state, &code));
  EXPECT_EQ(22, ov_process_exited(&process, nullptr, &code));
  EXPECT_EQ(22, ov_process_exited(&process, &state, nullptr));
}

// A key for each process, since cases run side by side in one registry.
const std::string kKeyName = "SOFTWARE\\Orvane-Test-" + std::to_string(GetCurrentProcessId());
const std::wstring kWideKeyName(kKeyName.begin(), kKeyName.end());

class RegistryTest : public ::testing::Test {
 protected:
  RegistryTest() { open(KEY_WOW64_64KEY); }
  ~RegistryTest() override {
    RegCloseKey(key_);
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_32KEY, 0);
  }
  void open(REGSAM view) {
    ASSERT_EQ(0, RegCreateKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), 0, nullptr, 0,
                                 KEY_ALL_ACCESS | view, nullptr, &key_, nullptr));
  }
  void set(DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(0, RegSetValueExW(key_, L"Name", 0, type, static_cast<const BYTE*>(data), bytes));
  }
  ov_rc get(uint32_t size) {
    length_ = size;
    return ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", out_, &length_);
  }
  HKEY key_ = nullptr;
  char out_[64] = "old";
  uint32_t length_ = 0;
  ov::CapturedLog log_;
};

TEST_F(RegistryTest, TextIsUtf8) {
  EXPECT_EQ(HKEY_LOCAL_MACHINE, OV_REG_LOCAL_MACHINE);
  EXPECT_EQ(HKEY_CURRENT_USER, OV_REG_CURRENT_USER);
  set(REG_SZ, L"C:\\\u00E4", 10);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("C:\\\xC3\xA4", out_);
  EXPECT_EQ(6U, length_);
  set(REG_EXPAND_SZ, L"%X%", 8);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("%X%", out_);
}

TEST_F(RegistryTest, TextNeedNotBeTerminatedNorEven) {
  set(REG_SZ, L"abcd", 6);  // the system would add a terminator that it sees behind
  EXPECT_EQ(0, get(6));
  EXPECT_STREQ("abc", out_);
  set(REG_SZ, L"abc", 5);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("ab", out_);
  set(REG_SZ, L"", 0);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(1U, length_);
}

TEST_F(RegistryTest, SmallBufferTellsALargerSizeAndIsEmptied) {
  set(REG_SZ, L"abcd", 10);
  EXPECT_EQ(28677, get(9));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(40U, length_);
  EXPECT_EQ(Messages{"DBG Buffer length of 40 required"}, log_.take());
  length_ = 0;
  EXPECT_EQ(0, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", nullptr, &length_));
  EXPECT_EQ(40U, length_);
  EXPECT_EQ(28677, get(0));
}

TEST_F(RegistryTest, TextThatGrowsInUtf8) {
  set(REG_SZ, L"\u20AC\u20AC\u20AC", 6);
  EXPECT_EQ(28677, get(8));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(10U, length_);
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG ov_str_ncpy() failed, errno:28677, err desc:"));
  EXPECT_EQ(0, get(10));
  EXPECT_EQ(10U, length_);
}

TEST_F(RegistryTest, OtherTypesAreRefused) {
  const DWORD number = 7;
  set(REG_DWORD, &number, sizeof number);
  EXPECT_EQ(22, get(sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(Messages{"LOG RegQueryValueEx() returned unexpected type: 4l"}, log_.take());
}

TEST_F(RegistryTest, IllFormedTextIsRefused) {
  set(REG_SZ, L"a\xD800", 6);
  EXPECT_EQ(22, get(sizeof out_));
  EXPECT_STREQ("", out_);
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG ov_wchar_to_utf8() failed, errno:22, err desc:"));
}

TEST_F(RegistryTest, MissingKeyAndValue) {
  EXPECT_EQ(2, get(sizeof out_));
  EXPECT_STREQ("", out_);
  length_ = sizeof out_;
  EXPECT_EQ(2, ov_reg_get(OV_REG_CURRENT_USER, "SOFTWARE\\No", "Name", out_, &length_));
  EXPECT_EQ(
      (Messages{"DBG Registry value Name not found", "DBG Registry subkey SOFTWARE\\No not found"}),
      log_.take());
}

TEST_F(RegistryTest, ThirtyTwoBitViewIsLookedAtSecond) {
  RegCloseKey(key_);
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  ASSERT_EQ(0, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), 0, nullptr, 0,
                               KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &key_, nullptr));
  set(REG_SZ, L"32", 6);
  length_ = sizeof out_;
  EXPECT_EQ(0, ov_reg_get(OV_REG_LOCAL_MACHINE, kKeyName.c_str(), "Name", out_, &length_));
  EXPECT_STREQ("32", out_);
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), KEY_WOW64_32KEY, 0);
}

TEST_F(RegistryTest, BadHiveAndArguments) {
  length_ = sizeof out_;
  EXPECT_EQ(6, ov_reg_get(nullptr, kKeyName.c_str(), "Name", out_, &length_));
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG RegOpenKeyEx() " + kKeyName + " failed, errno:6, err desc:"));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, nullptr, "Name", out_, &length_));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), nullptr, out_, &length_));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", out_, nullptr));
}

TEST(SocketsTest, StartCloseAndEnd) {
  ov_sock sock = ~ov_sock{0};
  EXPECT_EQ(10093, ov_sock_close(&sock));
  ASSERT_EQ(0, ov_sock_init());
  EXPECT_EQ(10038, ov_sock_close(&sock));
  sock = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  ASSERT_NE(~ov_sock{0}, sock);
  EXPECT_EQ(0, ov_sock_close(&sock));
  EXPECT_EQ(~ov_sock{0}, sock);
  EXPECT_EQ(22, ov_sock_close(nullptr));
  EXPECT_EQ(0, ov_sock_fini());
  EXPECT_EQ(10093, ov_sock_fini());
}

}  // namespace
