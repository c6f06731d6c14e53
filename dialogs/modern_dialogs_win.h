// The file dialogs of Windows 6.0 and above, over the shell's COM objects. See IDialogImpl.
//
// What costs only comfort (the default folder, the options, the default extension) is logged and
// passed over; all else throws SystemException with everything released and enabled again.
#pragma once

#include <windows.h>
#include <shobjidl.h>

#include <string>
#include <vector>

#include "dialogs/dialog_com_win.h"
#include "dialogs/dialog_impl.h"
#include "dialogs/file_types.h"

namespace Vantrel::Web {

class WinVistaOpenFileDialogImpl : public IDialogImpl {
 public:
  WinVistaOpenFileDialogImpl(std::string title, bool allowMultiple, std::string fileTypes,
                             bool pickFolders);
  void cancel() override {}
  std::vector<std::string> doShow() override;

 private:
  void setOptions(IFileDialog& dialog) const;

  const ComApartment apartment_;
  const std::string title_;
  const bool allowMultiple_;
  const std::string fileTypes_;
  const bool pickFolders_;
};

class WinVistaSaveFileDialogImpl : public IDialogImpl {
 public:
  WinVistaSaveFileDialogImpl(std::string title, std::string suggestedName, std::string fileTypes);
  void cancel() override {}
  std::vector<std::string> doShow() override;

 private:
  void setFilters(IFileDialog& dialog) const;

  const ComApartment apartment_;
  const std::string title_;
  const std::string suggestedName_;
  const std::string fileTypes_;
};

namespace WinDialogUtils {

// The shell's item of a folder of the user by its number (CSIDL_...); a failure is logged.
HRESULT getKnownFolderSI(int csidl, IShellItem** shellItem);

}  // namespace WinDialogUtils

}  // namespace Vantrel::Web
