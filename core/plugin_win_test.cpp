// What an instance asks of the platform when it is made.
#include <winsock2.h>

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cwchar>
#include <string>

#include "core/plugin.h"
#include "tests/support/log_recorder.h"
#include "tests/support/runtime/real_call_win.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

int startCode = 0;
int ends = 0;

int WSAAPI testStartup(WORD version, WSADATA* data) {
  if (startCode != 0) return startCode;
  static const auto real = ov::real_call<decltype(&WSAStartup)>(L"ws2_32.dll", "WSAStartup");
  return real(version, data);
}

int WSAAPI testCleanup() {
  ++ends;
  static const auto real = ov::real_call<decltype(&WSACleanup)>(L"ws2_32.dll", "WSACleanup");
  return real();
}

}  // namespace

extern "C" {
decltype(&WSAStartup) __imp_WSAStartup = testStartup;
decltype(&WSACleanup) __imp_WSACleanup = testCleanup;
}

namespace Vantrel::Web {
namespace {

constexpr DWORD kRoom = 260;

std::wstring variable(const wchar_t* name) {
  std::array<wchar_t, 1024> text{};
  GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size()));
  return text.data();
}

std::wstring workingDirectory() {
  std::array<wchar_t, 1024> text{};
  GetCurrentDirectoryW(static_cast<DWORD>(text.size()), text.data());
  return text.data();
}

class PluginPlatformTest : public testing::Test {
 protected:
  PluginPlatformTest() {
    startCode = 0;
    ends = 0;
    SetCurrentDirectoryW(ov::TempFolder::native(folder_.path()).c_str());
    before_ = workingDirectory();
  }
  ~PluginPlatformTest() override {
    SetEnvironmentVariableW(L"HOMEDRIVE", drive_.c_str());
    SetEnvironmentVariableW(L"HOMEPATH", path_.c_str());
    SetCurrentDirectoryW(directory_.c_str());
  }

  // An instance of a user with these; null for none.
  static void make(const wchar_t* drive, const wchar_t* path) {
    SetEnvironmentVariableW(L"HOMEDRIVE", drive);
    SetEnvironmentVariableW(L"HOMEPATH", path);
    const Plugin plugin;
  }
  // That the one line of a level begins so, and nothing has moved.
  void expectLine(const std::string& begin) const {
    EXPECT_EQ(log_.countContaining("LOG " + begin), 1U) << log_.text();
    EXPECT_EQ(log_.lines("LOG").size(), 1U);
    EXPECT_EQ(workingDirectory(), before_);
  }

  const std::wstring drive_ = variable(L"HOMEDRIVE");
  const std::wstring path_ = variable(L"HOMEPATH");
  const std::wstring directory_ = workingDirectory();
  const ov::TempFolder folder_;
  std::wstring before_;
  TestSupport::LogRecorder log_;
};

TEST_F(PluginPlatformTest, TheWorkingDirectoryIsTheUsersHome) {
  make(L"C:", L"\\windows");
  EXPECT_EQ(_wcsicmp(workingDirectory().c_str(), L"C:\\windows"), 0);
  EXPECT_TRUE(log_.lines("LOG").empty()) << log_.text();
}

TEST_F(PluginPlatformTest, WithoutADriveItStays) {
  make(nullptr, L"\\windows");
  expectLine("Warning: GetEnvironmentVariable() failed for HOMEDRIVE (203)");
}

TEST_F(PluginPlatformTest, WithoutAPathItStays) {
  make(L"C:", nullptr);
  expectLine("Warning: GetEnvironmentVariable() failed for HOMEPATH (203)");
}

TEST_F(PluginPlatformTest, AHomeThatIsNotThereIsNone) {
  make(L"C:", L"\\no such folder");
  expectLine("Warning: SetCurrentDirectory() failed (2)");
}

TEST_F(PluginPlatformTest, ADriveThatDoesNotFitIsNone) {
  for (const DWORD length : {kRoom, kRoom + 1, DWORD{1000}}) {
    make(std::wstring(length, L'd').c_str(), L"\\windows");
    EXPECT_EQ(log_.countContaining("failed for HOMEDRIVE ("), 1U) << length;
    EXPECT_EQ(log_.lines("LOG").size(), 1U) << length;
    log_.clear();
  }
  EXPECT_EQ(workingDirectory(), before_);
}

TEST_F(PluginPlatformTest, APathThatDoesNotFitBehindTheDriveIsNone) {
  for (const DWORD length : {kRoom - 2, kRoom, DWORD{1000}}) {
    make(L"C:", (L"\\" + std::wstring(length - 1, L'p')).c_str());
    EXPECT_EQ(log_.countContaining("failed for HOMEPATH ("), 1U) << length;
    EXPECT_EQ(log_.lines("LOG").size(), 1U) << length;
    log_.clear();
  }
  EXPECT_EQ(workingDirectory(), before_);
}

TEST_F(PluginPlatformTest, WithoutSocketsItIsMadeAllTheSame) {
  startCode = WSASYSNOTREADY;
  make(L"C:", L"\\windows");
  const auto errors = log_.lines("ERR");
  ASSERT_EQ(errors.size(), 1U) << log_.text();
  EXPECT_TRUE(errors[0].starts_with("Failed to initialize socket: ")) << errors[0];
  EXPECT_TRUE(errors[0].ends_with(" (10091)")) << errors[0];
  EXPECT_EQ(log_.countContaining("DBG ~Plugin() - done"), 1U);
}

TEST_F(PluginPlatformTest, EachInstanceStartsAndEndsTheSocketsOnce) {
  make(L"C:", L"\\windows");
  make(L"C:", L"\\windows");
  EXPECT_EQ(ends, 2);
}

}  // namespace
}  // namespace Vantrel::Web
