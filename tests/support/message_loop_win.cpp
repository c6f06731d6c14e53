#include "tests/support/message_loop.h"

#include <windows.h>

#include <string_view>
#include <vector>

namespace Vantrel::Web::TestSupport {

void runMessageLoop() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

void breakMessageWindows() {
  std::vector<HWND> windows;
  for (HWND window = nullptr;
       (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    if (std::wstring_view(name).starts_with(L"OWEventWindow")) windows.push_back(window);
  }
  for (const HWND window : windows) DestroyWindow(window);
}

}  // namespace Vantrel::Web::TestSupport
