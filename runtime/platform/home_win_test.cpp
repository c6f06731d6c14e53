// A user's home directory from the account: look-ups that need a domain are replaced by ours. And
// paths in the form of wide calls.
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>

#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"

namespace {

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

}  // namespace
