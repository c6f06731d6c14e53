#include "dialogs/legacy_open_dialog_win.h"

#include <commctrl.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <exception>
#include <mutex>

#include "dialogs/common_dialogs_win.h"
#include "dialogs/legacy_dialogs_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

namespace {

constexpr wchar_t kObjectProperty[] = L"OrvaneOpenFileDialog";
constexpr size_t kPathLength = 260;       // characters, the terminator among them
constexpr size_t kLongPathLength = 4096;  // of what the dialog is asked for

// Children of the common dialog, the same since its present form came: the shell's view of the
// folder, and the list in it.
constexpr int kShellView = 0x461;
constexpr int kShellList = 1;

constexpr std::wstring_view kShortcutEnd = L"lnk";

// The folder of the last choice in any dialog of the process, null before the first. Never
// destroyed, because a dialog may be shown while the process ends; no local static, whose making
// leaves handles of the C++ runtime behind at an unload.
std::wstring* lastDirectory = nullptr;

std::mutex lastDirectoryMutex;  // guards it: several apartments may show dialogs at once

std::wstring rememberedDirectory() {
  const std::lock_guard<std::mutex> lock(lastDirectoryMutex);
  return lastDirectory != nullptr ? *lastDirectory : std::wstring();
}

void rememberDirectory(const wchar_t* folder) {
  const std::lock_guard<std::mutex> lock(lastDirectoryMutex);
  if (lastDirectory == nullptr) lastDirectory = new std::wstring;
  *lastDirectory = folder;
}

bool isShortcut(const std::wstring& path) {
  return path.size() >= kShortcutEnd.size() &&
         _wcsicmp(path.c_str() + path.size() - kShortcutEnd.size(), kShortcutEnd.data()) == 0;
}

// The folder that the dialog shows, to be asked for names of its items; the desktop if it cannot be
// had. Empty when the dialog tells of none.
bool shownFolder(HWND frame, ComPointer<IShellFolder>& folder) {
  const LRESULT size = SendMessageW(frame, CDM_GETFOLDERIDLIST, 0, 0);
  if (size <= 0) return false;
  const TaskMemory<ITEMIDLIST> id(
      static_cast<PIDLIST_ABSOLUTE>(CoTaskMemAlloc(static_cast<size_t>(size))));
  if (!id) return false;
  SendMessageW(frame, CDM_GETFOLDERIDLIST, static_cast<WPARAM>(size),
               reinterpret_cast<LPARAM>(id.get()));
  ComPointer<IShellFolder> desktop;
  if (FAILED(SHGetDesktopFolder(desktop.put()))) return false;
  if (SUCCEEDED(desktop->BindToObject(id.get(), nullptr, IID_IShellFolder, folder.putVoid()))) {
    return true;
  }
  return SUCCEEDED(SHGetDesktopFolder(folder.put()));
}

// The whole path of a row of the list; empty if there is none.
std::wstring rowPath(HWND frame, HWND list, int row) {
  LVITEMW item = {};
  item.mask = LVIF_PARAM;
  item.iItem = row;
  if (!SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
  const auto* const child = reinterpret_cast<PCUITEMID_CHILD>(item.lParam);
  ComPointer<IShellFolder> folder;
  STRRET name = {};
  wchar_t path[kLongPathLength] = L"";
  if (child == nullptr || !shownFolder(frame, folder) ||
      FAILED(folder->GetDisplayNameOf(child, SHGDN_FORPARSING, &name)) ||
      FAILED(StrRetToBufW(&name, child, path, kLongPathLength))) {
    return {};
  }
  return path;
}

// Over the owner or, without one, over the monitor's work area.
void center(HWND window) {
  const HWND owner = GetWindow(window, GW_OWNER);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  RECT own = {};
  if (!GetMonitorInfoW(
          MonitorFromWindow(owner != nullptr ? owner : window, MONITOR_DEFAULTTONEAREST),
          &monitor) ||
      !GetWindowRect(window, &own)) {
    return;
  }
  RECT around = monitor.rcWork;
  if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &around);
  const LONG width = own.right - own.left;
  const LONG height = own.bottom - own.top;
  const auto inside = [](LONG at, LONG least, LONG most) {
    return std::max(least, std::min(at, most));
  };
  SetWindowPos(window, nullptr,
               inside((around.left + around.right - width) / 2, monitor.rcWork.left,
                      monitor.rcWork.right - width),
               inside((around.top + around.bottom - height) / 2, monitor.rcWork.top,
                      monitor.rcWork.bottom - height),
               0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

COrvOpenFileDialog::COrvOpenFileDialog(HWND parentWindow, const std::string& title,
                                       bool allowDirectories, bool allowFiles, bool allowMultiple,
                                       const std::string& fileTypes)
    : allowDirectories_(allowDirectories),
      allowFiles_(allowFiles),
      title_(toWide(title)),
      initialDirectory_(rememberedDirectory()),
      fileBuffer_(kPathLength) {
  if (const auto filters = parseFileTypes(fileTypes); !filters.empty()) {
    filter_ = commonDialogFilter(filters);
  }
  dialog_.lStructSize = sizeof dialog_;
  dialog_.hwndOwner = parentWindow;
  dialog_.lpstrFilter = filter_.empty() ? nullptr : filter_.c_str();
  dialog_.lpstrFile = fileBuffer_.data();
  dialog_.nMaxFile = static_cast<DWORD>(fileBuffer_.size());
  dialog_.lpstrInitialDir = initialDirectory_.empty() ? nullptr : initialDirectory_.c_str();
  dialog_.lpstrTitle = title_.empty() ? nullptr : title_.c_str();
  dialog_.Flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT | OFN_EXPLORER | OFN_ENABLEHOOK |
                  OFN_ENABLESIZING | (allowMultiple ? OFN_ALLOWMULTISELECT : 0u);
  dialog_.lCustData = reinterpret_cast<LPARAM>(this);
  dialog_.lpfnHook = hook;
}

int COrvOpenFileDialog::doModal() {
  return CommonDialogs::openFileName(&dialog_) ? 1 : 0;
}

UINT_PTR CALLBACK COrvOpenFileDialog::hook(HWND child, UINT message, WPARAM, LPARAM lParam) {
  if (message != WM_NOTIFY) return 0;
  // What is behind the header is known of these alone: other windows may send notices of their own.
  const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
  if (code != CDN_INITDONE && code != CDN_SELCHANGE && code != CDN_FILEOK) return 0;
  try {
    const auto* const notice = reinterpret_cast<const OFNOTIFYW*>(lParam);
    auto* const self = reinterpret_cast<COrvOpenFileDialog*>(notice->lpOFN->lCustData);
    return self->onNotify(child, code);
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  return 0;
}

UINT_PTR COrvOpenFileDialog::onNotify(HWND child, UINT code) {
  if (code == CDN_INITDONE) onInitDone(child);
  if (code == CDN_SELCHANGE) onFileNameChange();
  // What the dialog would accept by itself, a name that was typed, is not taken: it stays open.
  if (code != CDN_FILEOK || onOk()) return 0;
  SetWindowLongPtrW(child, DWLP_MSGRESULT, 1);
  return 1;
}

void COrvOpenFileDialog::onInitDone(HWND child) {
  frame_ = GetParent(child);
  // Without it our procedure would find nobody; the dialog tells of its OK by a notice as well.
  if (SetPropW(frame_, kObjectProperty, this) != FALSE) {
    formerProc_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(frame_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(frameProc)));
  }
  center(frame_);
  BringWindowToTop(frame_);
  SetForegroundWindow(frame_);
}

LRESULT CALLBACK COrvOpenFileDialog::frameProc(HWND frame, UINT message, WPARAM wParam,
                                               LPARAM lParam) {
  auto* const self = static_cast<COrvOpenFileDialog*>(GetPropW(frame, kObjectProperty));
  if (self == nullptr) return DefWindowProcW(frame, message, wParam, lParam);
  const WNDPROC former = self->formerProc_;
  if (message == WM_NCDESTROY) {
    RemovePropW(frame, kObjectProperty);
    SetWindowLongPtrW(frame, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former));
  }
  try {
    // The button's other notices, such as of the focus, have a code in the high word.
    const bool pressed =
        message == WM_COMMAND && LOWORD(wParam) == IDOK && HIWORD(wParam) == BN_CLICKED;
    if (pressed && self->onOk()) return 0;
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  return CallWindowProcW(former, frame, message, wParam, lParam);
}

// Room for the names of a long selection, before the dialog finds that they do not fit.
void COrvOpenFileDialog::onFileNameChange() {
  const LRESULT length = SendMessageW(frame_, CDM_GETSPEC, 0, 0);
  if (length < 0) return;
  const size_t required = static_cast<size_t>(length) + kPathLength;
  if (dialog_.nMaxFile >= required) return;
  TaskMemory<wchar_t> grown(static_cast<wchar_t*>(CoTaskMemAlloc(required * sizeof(wchar_t))));
  if (!grown) return;
  std::fill_n(grown.get(), required, L'\0');
  grownBuffer_ = std::move(grown);
  dialog_.lpstrFile = grownBuffer_.get();
  dialog_.nMaxFile = static_cast<DWORD>(required);
}

// Whether there was something to choose; the dialog has ended then.
bool COrvOpenFileDialog::onOk() {
  wchar_t folder[kLongPathLength] = L"";
  wchar_t file[kLongPathLength] = L"";
  SendMessageW(frame_, CDM_GETFOLDERPATH, kLongPathLength, reinterpret_cast<LPARAM>(folder));
  SendMessageW(frame_, CDM_GETFILEPATH, kLongPathLength, reinterpret_cast<LPARAM>(file));
  // The same path for both: nothing is selected. Wine says so also for a folder that is.
  if (std::wcscmp(folder, file) != 0) readSelection(folder);
  if (selection_.empty()) return false;
  rememberDirectory(folder);
  EndDialog(frame_, 1);
  return true;
}

void COrvOpenFileDialog::readSelection(const wchar_t* folder) {
  const HWND view = GetDlgItem(frame_, kShellView);
  const HWND list = view != nullptr ? GetDlgItem(view, kShellList) : nullptr;
  if (list == nullptr) return;
  const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row) {
    const LRESULT state =
        SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED);
    if (state != LVIS_SELECTED) continue;
    // A folder such as the computer itself: what it holds has no path.
    if (folder[0] == L'\0') return selection_.clear();
    addRow(list, row);
  }
}

void COrvOpenFileDialog::addRow(HWND list, int row) {
  std::wstring path = rowPath(frame_, list, row);
  struct _stat64 status = {};
  if (_wstat64(path.c_str(), &status) != 0) {
    const int code = errno;
    if (code == ENOENT) {
      ov_log("File not found: %s", toUtf8(path).c_str());
    } else {
      ov_err("File dialog stat error: %d", code);
    }
    return;
  }
  const bool directory = (status.st_mode & _S_IFDIR) != 0;
  const bool allowed = directory ? allowDirectories_ : allowFiles_ && !isShortcut(path);
  if (allowed) selection_.push_back(std::move(path));
}

WinOpenFileDialogImpl::WinOpenFileDialogImpl(HWND parentWindow, std::string title,
                                             bool allowDirectories, bool allowFiles,
                                             bool allowMultiple, std::string fileTypes)
    : apartment_("WinOpenFileDialogImpl() - CoInitialize failed"),
      parentWindow_(parentWindow),
      title_(std::move(title)),
      allowDirectories_(allowDirectories),
      allowFiles_(allowFiles),
      allowMultiple_(allowMultiple),
      fileTypes_(std::move(fileTypes)) {}

std::vector<std::string> WinOpenFileDialogImpl::doShow() {
  COrvOpenFileDialog dialog(parentWindow_, title_, allowDirectories_, allowFiles_, allowMultiple_,
                            fileTypes_);
  const int result = dialog.doModal();
  // A cancel has no code.
  const DWORD code = result == 1 ? 0 : CommonDialogs::extendedError();
  if (code != 0) {
    const std::string text =
        "Open file dialog failed (0x" + hexText(static_cast<HRESULT>(code)) + ")";
    ov_err("%s", text.c_str());
    throw SystemException(text);
  }
  std::vector<std::string> paths;
  for (const std::wstring& path : dialog.selection()) paths.push_back(toUtf8(path));
  return paths;
}

}  // namespace Vantrel::Web
