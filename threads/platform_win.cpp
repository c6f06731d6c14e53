#include "threads/platform.h"

#include <windows.h>
#include <objbase.h>

#include "runtime/ov_log.h"

// The linker places this symbol at the module's first byte, whose address is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace Vantrel::Web {

int32_t initializeThreadCom() {
  return CoInitialize(nullptr);
}

void uninitializeThreadCom() {
  CoUninitialize();
}

void* moduleHandle() {
  return &__ImageBase;
}

bool holdModule() {
  HMODULE module = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            static_cast<LPCWSTR>(moduleHandle()), &module) != FALSE;
}

namespace {

// How often the thread below looks.
constexpr DWORD kLookMs = 20;

// Code must not unload itself under its own feet, nor under the browser's thread, which returns
// through it. So a thread of its own does it, once a window of the browser's thread has gone, which
// a posted message ends: that one is taken by the message loop only, when the browser's thread has
// left our code, and the window's class is the system's, so its end needs none of ours.
// FreeLibraryAndExitThread then does not come back here.
DWORD WINAPI releaseModule(void* window) {
  while (IsWindow(static_cast<HWND>(window)) != FALSE) Sleep(kLookMs);
  FreeLibraryAndExitThread(static_cast<HMODULE>(moduleHandle()), 0);
}

}  // namespace

// A message that was sent by the thread instead was sometimes never answered under Wine.
void releaseModuleLater() {
  const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                      nullptr, nullptr);
  const bool willEnd = window != nullptr && PostMessageW(window, WM_CLOSE, 0, 0) != FALSE;
  const HANDLE thread =
      willEnd ? CreateThread(nullptr, 0, releaseModule, window, 0, nullptr) : nullptr;
  if (thread != nullptr) {
    CloseHandle(thread);
    return;
  }
  ov_err("The library stays loaded: error %u", static_cast<unsigned>(GetLastError()));
  if (window != nullptr) DestroyWindow(window);
}

}  // namespace Vantrel::Web
