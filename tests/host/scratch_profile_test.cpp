// The profile of a test process: its folders and its registry are its own, and those of the
// processes that it starts.
#include <windows.h>

#include <shlobj.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/scratch_profile.h"

namespace Vantrel::Web::Host {
namespace {

std::wstring localAppData() {
  wchar_t path[MAX_PATH] = L"";
  SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, path);
  return path;
}

bool hasInstallDir(HKEY root) {
  return RegGetValueW(root, L"SOFTWARE\\Orvane\\Orvane Vantrel\\v2", L"InstallDir", RRF_RT_REG_SZ,
                      nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

TEST(ScratchProfileTest, TheFoldersMoveAndGo) {
  std::wstring moved;
  {
    const ScratchProfile profile;
    moved = localAppData();
    EXPECT_EQ(moved, profile.localAppData().wstring());
    EXPECT_TRUE(std::filesystem::exists(moved));
  }
  EXPECT_FALSE(std::filesystem::exists(moved));
}

TEST(ScratchProfileTest, TheRegistryOfTheUserIsItsOwn) {
  {
    const ScratchProfile profile;
    EXPECT_FALSE(hasInstallDir(HKEY_CURRENT_USER));
    profile.setUserInstallDir(L"C:\\client\\");
    EXPECT_TRUE(hasInstallDir(HKEY_CURRENT_USER));
  }
  EXPECT_FALSE(hasInstallDir(HKEY_CURRENT_USER));
}

TEST(ScratchProfileTest, TheRegistryOfAllUsersCanBeItsOwn) {
  {
    ScratchProfile profile;
    profile.emptySystemRegistry();
    EXPECT_FALSE(hasInstallDir(HKEY_LOCAL_MACHINE));
    profile.setSystemInstallDir(L"C:\\client\\");
    EXPECT_TRUE(hasInstallDir(HKEY_LOCAL_MACHINE));
    EXPECT_FALSE(hasInstallDir(HKEY_CURRENT_USER));
    EXPECT_EQ(localAppData(), profile.localAppData().wstring());
  }
  EXPECT_FALSE(hasInstallDir(HKEY_LOCAL_MACHINE));
}

TEST(ScratchProfileTest, AStartedProcessSeesTheSameFolders) {
  const ScratchProfile profile;
  const std::wstring file = (profile.localAppData() / "told.txt").wstring();
  std::wstring command = L"cmd.exe /c echo %LOCALAPPDATA%> \"" + file + L"\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                             nullptr, nullptr, &startup, &process));
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  EXPECT_GT(std::filesystem::file_size(file), profile.localAppData().wstring().size());
}

}  // namespace
}  // namespace Vantrel::Web::Host
