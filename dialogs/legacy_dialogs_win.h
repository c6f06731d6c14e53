// The file dialogs of Windows before 6.0, where the shell has no dialog objects. See IDialogImpl.
#pragma once

#include <string>
#include <vector>

#include "dialogs/dialog_com_win.h"
#include "dialogs/dialog_impl.h"
#include "dialogs/file_types.h"

namespace Vantrel::Web {

// Files, folders, or both together.
class WinOpenFileDialogImpl : public IDialogImpl {
 public:
  WinOpenFileDialogImpl(HWND parentWindow, std::string title, bool allowDirectories,
                        bool allowFiles, bool allowMultiple, std::string fileTypes);
  void cancel() override {}
  std::vector<std::string> doShow() override;

 private:
  const ComApartment apartment_;
  const HWND parentWindow_;
  const std::string title_;
  const bool allowDirectories_;
  const bool allowFiles_;
  const bool allowMultiple_;
  const std::string fileTypes_;
};

// One folder. Its path is in the system's code page, which is what pages of such systems have
// always got from this dialog.
class WinBrowseFolderDialogImpl : public IDialogImpl {
 public:
  WinBrowseFolderDialogImpl();
  void cancel() override {}
  std::vector<std::string> doShow() override;

 private:
  const ComApartment apartment_;
};

class WinSaveFileDialogImpl : public IDialogImpl {
 public:
  WinSaveFileDialogImpl(HWND parentWindow, std::string title, std::string suggestedName,
                        std::string fileTypes);
  void cancel() override {}
  std::vector<std::string> doShow() override;

 private:
  std::vector<FileTypeFilter> filters(uint32_t* index) const;

  const ComApartment apartment_;
  const HWND parentWindow_;
  const std::string title_;
  const std::string suggestedName_;
  const std::string fileTypes_;
};

// The filters as the common dialogs take them: each text ended by a NUL, the list by another. The
// text's own terminator is that last one.
std::wstring commonDialogFilter(const std::vector<FileTypeFilter>& filters);

}  // namespace Vantrel::Web
