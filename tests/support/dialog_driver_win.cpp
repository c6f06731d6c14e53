#include "tests/support/dialog_driver_win.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "tools/user/file_dialog_win.h"

namespace Vantrel::Web::TestSupport {

namespace {

constexpr DWORD kPause = 20;      // milliseconds between two looks
constexpr DWORD kSettling = 200;  // from a dialog's first sight to its set-up's end
constexpr int kLooks = 1000;      // before a dialog that does not come is given up
constexpr int kShellView = 0x461;
constexpr int kShellList = 1;

struct Search {
  HWND known;
  HWND found;
};

BOOL CALLBACK takeDialog(HWND window, LPARAM argument) {
  auto& search = *reinterpret_cast<Search*>(argument);
  if (window == search.known || !StandIn::isShownDialog(window)) return TRUE;
  search.found = window;
  return FALSE;
}

// A dialog of the thread that is not `known`, once it can be seen; null if none comes.
HWND waitForDialog(DWORD thread, HWND known) {
  Search search = {known, nullptr};
  for (int look = 0; look < kLooks && search.found == nullptr; ++look) {
    EnumThreadWindows(thread, takeDialog, reinterpret_cast<LPARAM>(&search));
    if (search.found == nullptr) Sleep(kPause);
  }
  if (search.found != nullptr) Sleep(kSettling);
  return search.found;
}

HWND nameEdit(HWND dialog) {
  const HWND edit = StandIn::nameEditOf(dialog);
  EXPECT_NE(edit, nullptr);
  return edit;
}

}  // namespace

DialogDriver::DialogDriver(Action action)
    : action_(std::move(action)), thread_(GetCurrentThreadId()) {
  handle_ = CreateThread(nullptr, 0, run, this, 0, nullptr);
}

DialogDriver::~DialogDriver() {
  WaitForSingleObject(handle_, INFINITE);
  CloseHandle(handle_);
  EXPECT_TRUE(found_) << "no dialog was shown";
}

DWORD WINAPI DialogDriver::run(void* self) {
  auto* const driver = static_cast<DialogDriver*>(self);
  const HWND dialog = waitForDialog(driver->thread_, nullptr);
  driver->found_ = dialog != nullptr;
  if (dialog == nullptr) return 1;
  driver->action_(dialog);
  return 0;
}

void DialogDriver::type(HWND dialog, const std::wstring& text) {
  if (nameEdit(dialog) != nullptr) StandIn::typeName(dialog, text);
}

std::wstring DialogDriver::typed(HWND dialog) {
  wchar_t text[260] = L"";
  SendMessageW(nameEdit(dialog), WM_GETTEXT, 260, reinterpret_cast<LPARAM>(text));
  return text;
}

void DialogDriver::accept(HWND dialog) {
  StandIn::pressOk(dialog);
}

void DialogDriver::accept(HWND dialog, const std::wstring& text) {
  type(dialog, text);
  accept(dialog);
}

void DialogDriver::cancel(HWND dialog) {
  StandIn::pressCancel(dialog);
}

void DialogDriver::acceptInVain(HWND dialog) {
  // Sent, so that the dialog has done with it when this returns.
  SendMessageW(dialog, WM_COMMAND, IDOK, 0);
  EXPECT_NE(IsWindowVisible(dialog), FALSE) << "the dialog has ended";
  cancel(dialog);
}

void DialogDriver::close(HWND dialog) {
  PostMessageW(dialog, WM_CLOSE, 0, 0);
}

void DialogDriver::answer(HWND dialog, WORD button) {
  HWND question = dialog;
  for (int look = 0; look < kLooks && question == dialog; ++look) {
    Sleep(kPause);
    question = GetLastActivePopup(dialog);
  }
  EXPECT_NE(question, dialog) << "no question was asked";
  if (question == dialog) return cancel(dialog);
  Sleep(kSettling);
  PostMessageW(question, WM_COMMAND, button, 0);
}

HWND DialogDriver::another(HWND dialog) {
  return waitForDialog(GetWindowThreadProcessId(dialog, nullptr), dialog);
}

void DialogDriver::waitUntilGone(HWND dialog) {
  for (int look = 0; look < kLooks && IsWindowVisible(dialog) != FALSE; ++look) Sleep(kPause);
  EXPECT_EQ(IsWindowVisible(dialog), FALSE);
}

int DialogDriver::select(HWND dialog, const std::wstring& name) {
  const HWND view = GetDlgItem(dialog, kShellView);
  const HWND list = view != nullptr ? GetDlgItem(view, kShellList) : nullptr;
  EXPECT_NE(list, nullptr);
  const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  int selected = 0;
  for (int row = 0; row < count; ++row) {
    wchar_t text[260] = L"";
    LVITEMW item = {};
    item.pszText = text;
    item.cchTextMax = 260;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    if (name != text) continue;
    item.stateMask = LVIS_SELECTED;
    item.state = LVIS_SELECTED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    ++selected;
  }
  return selected;
}

namespace {
constexpr UINT kRunMessage = WM_APP;
}

PageTask::PageTask(std::function<void()> function)
    : function_(std::move(function)),
      window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                              nullptr)) {
  EXPECT_NE(window_, nullptr);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(windowProc));
}

PageTask::~PageTask() {
  DestroyWindow(window_);
}

void PageTask::run() const {
  SendMessageW(window_, kRunMessage, 0, 0);
}

LRESULT CALLBACK PageTask::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kRunMessage) return DefWindowProcW(window, message, wParam, lParam);
  reinterpret_cast<PageTask*>(GetWindowLongPtrW(window, GWLP_USERDATA))->function_();
  return 0;
}

}  // namespace Vantrel::Web::TestSupport
