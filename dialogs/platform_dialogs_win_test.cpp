// Which dialog the version of Windows brings.
#include <windows.h>

#include <gtest/gtest.h>

#include "dialogs/legacy_dialogs_win.h"
#include "dialogs/modern_dialogs_win.h"

namespace {

DWORD majorVersion = 0;

BOOL WINAPI tellVersion(OSVERSIONINFOW* version) {
  EXPECT_EQ(version->dwOSVersionInfoSize, 276u);
  version->dwMajorVersion = majorVersion;
  return TRUE;
}

}  // namespace

extern "C" {
decltype(&GetVersionExW) __imp_GetVersionExW = tellVersion;
}

namespace Vantrel::Web {
namespace {

template <class Wanted>
bool is(const std::unique_ptr<IDialogImpl>& impl) {
  return dynamic_cast<const Wanted*>(impl.get()) != nullptr;
}

TEST(PlatformDialogsTest, SinceVersionSixTheDialogsAreTheShellsObjects) {
  for (const DWORD version : {6u, 7u, 10u}) {
    majorVersion = version;
    EXPECT_TRUE(is<WinVistaOpenFileDialogImpl>(newOpenFileDialogImpl(nullptr, "", true, true, "")));
    EXPECT_TRUE(is<WinVistaOpenFileDialogImpl>(newOpenFolderDialogImpl(nullptr, "", false)));
    EXPECT_TRUE(is<WinVistaOpenFileDialogImpl>(newOpenFolderDialogImpl(nullptr, "", true)));
    EXPECT_TRUE(is<WinVistaSaveFileDialogImpl>(newSaveFileDialogImpl(nullptr, "", "", "")));
  }
}

TEST(PlatformDialogsTest, BeforeThatTheyAreTheCommonOnes) {
  majorVersion = 5;
  EXPECT_TRUE(is<WinOpenFileDialogImpl>(newOpenFileDialogImpl(nullptr, "", true, true, "")));
  EXPECT_TRUE(is<WinBrowseFolderDialogImpl>(newOpenFolderDialogImpl(nullptr, "", false)));
  EXPECT_TRUE(is<WinOpenFileDialogImpl>(newOpenFolderDialogImpl(nullptr, "", true)));
  EXPECT_TRUE(is<WinSaveFileDialogImpl>(newSaveFileDialogImpl(nullptr, "", "", "")));
}

}  // namespace
}  // namespace Vantrel::Web
