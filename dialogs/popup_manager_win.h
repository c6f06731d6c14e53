// Finds the owner of a modal dialog and keeps the window below it disabled for as long as this
// lives. On the stack of the call that shows the dialog; the browser's thread only.
#pragma once

#include <windows.h>

namespace Vantrel::Web {

class WinPopupMgrImpl {
 public:
  // Null stands for the window that is active on this thread.
  explicit WinPopupMgrImpl(HWND window);
  ~WinPopupMgrImpl();
  WinPopupMgrImpl(const WinPopupMgrImpl&) = delete;
  WinPopupMgrImpl& operator=(const WinPopupMgrImpl&) = delete;

  // May be null, or a window of another process when none of this thread is active.
  HWND owner() const { return owner_; }

 private:
  HWND owner_ = nullptr;
  HWND disabledWindow_ = nullptr;  // null unless one was disabled
};

}  // namespace Vantrel::Web
