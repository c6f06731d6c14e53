// Plays the user at a dialog that asks for a file, whichever process shows it: waits for the
// dialog, types the name and presses OK, or presses Cancel without a name. usage: dialog_user
// [NAME]
//
// Ends with 0 when the dialog has gone, with 1 if none came, with 2 if it stayed.
#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "tools/user/file_dialog_win.h"

namespace {

using namespace Vantrel::StandIn;

constexpr DWORD kPause = 50;      // milliseconds between two looks
constexpr DWORD kSettling = 500;  // from a dialog's first sight to its set-up's end
constexpr int kLooks = 1200;

BOOL CALLBACK takeDialog(HWND window, LPARAM result) {
  if (!isShownDialog(window) || nameEditOf(window) == nullptr) return TRUE;
  *reinterpret_cast<HWND*>(result) = window;
  return FALSE;
}

HWND shownDialog() {
  HWND dialog = nullptr;
  EnumWindows(takeDialog, reinterpret_cast<LPARAM>(&dialog));
  return dialog;
}

// True once `done` is, false if it never was.
template <class Done>
bool waitUntil(Done done) {
  for (int look = 0; look < kLooks; ++look) {
    if (done()) return true;
    Sleep(kPause);
  }
  return false;
}

int answer(const wchar_t* name) {
  HWND dialog = nullptr;
  if (!waitUntil([&dialog] { return (dialog = shownDialog()) != nullptr; })) return 1;
  Sleep(kSettling);
  if (name != nullptr && std::wcscmp(name, L"--see") == 0) return 0;
  if (name != nullptr) {
    typeName(dialog, name);
    pressOk(dialog);
  } else {
    pressCancel(dialog);
  }
  return waitUntil([dialog] { return IsWindow(dialog) == FALSE; }) ? 0 : 2;
}

}  // namespace

int main() {
  // The names as they were given: the arguments of main() are in a code page that lacks characters.
  int count = 0;
  wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  const int status = answer(count > 1 ? arguments[1] : nullptr);
  if (status != 0) {
    const char* const words = status == 1 ? "no dialog" : "it stays";
    static_cast<void>(std::fprintf(stderr, "dialog_user: %s\n", words));
  }
  LocalFree(arguments);
  return status;
}
