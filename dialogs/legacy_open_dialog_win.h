// The common open dialog of old systems, made to return folders, files, or both. It cannot do so by
// itself: its window is subclassed, and on OK the selection is read from its list and the dialog is
// ended from there.
//
// On the stack of the call that shows it; the browser's thread only.
#pragma once

#include <windows.h>
#include <commdlg.h>

#include <string>
#include <vector>

#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web {

class COrvOpenFileDialog {
 public:
  // Throws std::runtime_error for file types that do not parse.
  COrvOpenFileDialog(HWND parentWindow, const std::string& title, bool allowDirectories,
                     bool allowFiles, bool allowMultiple, const std::string& fileTypes);
  COrvOpenFileDialog(const COrvOpenFileDialog&) = delete;
  COrvOpenFileDialog& operator=(const COrvOpenFileDialog&) = delete;

  // Shows the dialog; 1 when it was accepted.
  int doModal();
  // What was chosen, empty after a cancel.
  const std::vector<std::wstring>& selection() const { return selection_; }

 private:
  static UINT_PTR CALLBACK hook(HWND child, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK frameProc(HWND frame, UINT message, WPARAM wParam, LPARAM lParam);

  UINT_PTR onNotify(HWND child, UINT code);
  void onInitDone(HWND child);
  void onFileNameChange();
  bool onOk();
  void readSelection(const wchar_t* folder);
  void addRow(HWND list, int row);

  const bool allowDirectories_;
  const bool allowFiles_;
  const std::wstring title_;
  std::wstring filter_;
  std::wstring initialDirectory_;
  std::vector<wchar_t> fileBuffer_;
  TaskMemory<wchar_t> grownBuffer_;  // in place of fileBuffer_ once the selection is long
  OPENFILENAMEW dialog_ = {};
  HWND frame_ = nullptr;  // the common dialog itself, from the end of its set-up on
  WNDPROC formerProc_ = nullptr;
  std::vector<std::wstring> selection_;
};

}  // namespace Vantrel::Web
