#include "dialogs/popup_manager_win.h"

namespace Vantrel::Web {

namespace {

// The last window on the way up, which is `window` itself if it has none above it.
HWND topLevelOf(HWND window) {
  HWND top = window;
  for (HWND above = window; above != nullptr; above = GetParent(above)) top = above;
  return top;
}

}  // namespace

WinPopupMgrImpl::WinPopupMgrImpl(HWND window) {
  HWND found = window != nullptr ? window : GetActiveWindow();
  while (found != nullptr && (GetWindowLongW(found, GWL_STYLE) & WS_CHILD) != 0) {
    found = GetParent(found);
  }
  const HWND top = topLevelOf(found);
  if (window == nullptr && found != nullptr) found = GetLastActivePopup(found);
  owner_ = found != nullptr ? found : GetForegroundWindow();
  if (top == nullptr || top == owner_ || !IsWindowEnabled(top)) return;
  disabledWindow_ = top;
  EnableWindow(top, FALSE);
}

WinPopupMgrImpl::~WinPopupMgrImpl() {
  if (disabledWindow_ != nullptr) EnableWindow(disabledWindow_, TRUE);
}

}  // namespace Vantrel::Web
