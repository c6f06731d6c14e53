// Which of the platform's dialogs is shown: by the version of Windows, and by nothing else.
#include <windows.h>

#include "dialogs/dialog_impl.h"
#include "dialogs/legacy_dialogs_win.h"
#include "dialogs/modern_dialogs_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {

// Since 6.0 the shell has dialog objects. A process without a manifest for newer systems is
// told 6.2 there, which is as good.
bool hasModernDialogs() {
  constexpr DWORD kModernMajorVersion = 6;
  OSVERSIONINFOW version = {};
  static_assert(sizeof version == 276);
  version.dwOSVersionInfoSize = sizeof version;
  GetVersionExW(&version);
  return version.dwMajorVersion >= kModernMajorVersion;
}

HWND toWindow(void* window) {
  return static_cast<HWND>(window);
}

}  // namespace

std::unique_ptr<IDialogImpl> newOpenFileDialogImpl(void* parentWindow, const std::string& title,
                                                   bool allowDirectories, bool allowMultiple,
                                                   const std::string& fileTypes) {
  if (hasModernDialogs()) {
    // These choose files or folders, never both, so that leave is of no use here.
    return std::make_unique<WinVistaOpenFileDialogImpl>(title, allowMultiple, fileTypes, false);
  }
  return std::make_unique<WinOpenFileDialogImpl>(toWindow(parentWindow), title, allowDirectories,
                                                 true, allowMultiple, fileTypes);
}

std::unique_ptr<IDialogImpl> newOpenFolderDialogImpl(void* parentWindow, const std::string& title,
                                                     bool allowMultiple) {
  if (hasModernDialogs()) {
    return std::make_unique<WinVistaOpenFileDialogImpl>(title, allowMultiple, "", true);
  }
  if (!allowMultiple) return std::make_unique<WinBrowseFolderDialogImpl>();
  return std::make_unique<WinOpenFileDialogImpl>(toWindow(parentWindow), title, true, false, true,
                                                 "");
}

std::unique_ptr<IDialogImpl> newSaveFileDialogImpl(void* parentWindow, const std::string& title,
                                                   const std::string& suggestedName,
                                                   const std::string& fileTypes) {
  if (hasModernDialogs()) {
    return std::make_unique<WinVistaSaveFileDialogImpl>(title, suggestedName, fileTypes);
  }
  return std::make_unique<WinSaveFileDialogImpl>(toWindow(parentWindow), title, suggestedName,
                                                 fileTypes);
}

}  // namespace Vantrel::Web
