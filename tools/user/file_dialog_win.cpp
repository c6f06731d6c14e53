#include "tools/user/file_dialog_win.h"

#include <cwchar>

namespace Vantrel::StandIn {

namespace {

constexpr int kNameEdit = 0x480;

bool isOfClass(HWND window, const wchar_t* wanted) {
  wchar_t name[16] = L"";
  GetClassNameW(window, name, 16);
  return std::wcscmp(name, wanted) == 0;
}

BOOL CALLBACK takeNameEdit(HWND window, LPARAM result) {
  auto& taken = *reinterpret_cast<HWND*>(result);
  // The edit of a name, which may stand in a combination box of that number.
  if (isOfClass(window, L"Edit") && (GetDlgCtrlID(window) == kNameEdit || taken == nullptr)) {
    taken = window;
  }
  return TRUE;
}

}  // namespace

bool isShownDialog(HWND window) {
  return isOfClass(window, L"#32770") && IsWindowVisible(window) != FALSE;
}

HWND nameEditOf(HWND dialog) {
  HWND edit = nullptr;
  EnumChildWindows(dialog, takeNameEdit, reinterpret_cast<LPARAM>(&edit));
  return edit;
}

void typeName(HWND dialog, const std::wstring& name) {
  SendMessageW(nameEditOf(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

void pressOk(HWND dialog) {
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

void pressCancel(HWND dialog) {
  PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

}  // namespace Vantrel::StandIn
