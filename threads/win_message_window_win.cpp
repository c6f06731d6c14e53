#include "threads/win_message_window.h"

#include <windows.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

#include "runtime/ov_log.h"
#include "threads/guarded.h"
#include "threads/platform.h"

namespace Vantrel::Web {

namespace {

constexpr UINT kCallbackMessage = 1151;

struct CallbackPair {
  AsyncFunction function;
  void* argument;
};

HWND toWindow(void* handle) {
  return static_cast<HWND>(handle);
}

LRESULT CALLBACK _WinProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kCallbackMessage) return DefWindowProcW(hWnd, message, wParam, lParam);
  OV_DEBUG("WinMessageWindow::_WinProc() - hWnd=%p", static_cast<void*>(hWnd));
  const std::unique_ptr<CallbackPair> pair(reinterpret_cast<CallbackPair*>(lParam));
  guarded([&pair] { pair->function(pair->argument); });
  return 0;
}

HINSTANCE module() {
  return static_cast<HINSTANCE>(moduleHandle());
}

// Needs no memory of the heap: a window must be able to end without any.
struct ClassName {
  explicit ClassName(int32_t number) { wsprintfW(text, L"OWEventWindow%d", number); }
  wchar_t text[32];  // more than the longest number needs
};

// A class of its own for every window; one that exists already serves as well.
void registerWindowClass(const ClassName& name) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = _WinProc;
  windowClass.hInstance = module();
  windowClass.lpszClassName = name.text;
  if (RegisterClassExW(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    throw std::runtime_error("Could not register window class");
  }
}

// Each class holds one of the session's 16,384 atoms. On Windows, a window that goes while its own
// procedure is further up the stack keeps its class, and then the atom stays taken.
void unregisterWindowClass(int32_t number) {
  UnregisterClassW(ClassName(number).text, module());
}

}  // namespace

WinMessageWindow::WinMessageWindow() {
  static std::atomic<int32_t> count = 0;  // each apartment's thread makes windows of its own
  number_ = count++;
  OV_DEBUG("WinMessageWindow() - count=%i", number_);
  const std::wstring title = L"OrvaneWebEventWindow" + std::to_wstring(number_);
  const ClassName name(number_);
  registerWindowClass(name);
  hWnd_ = CreateWindowExW(0, name.text, title.c_str(), WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                          module(), nullptr);
  if (hWnd_ == nullptr) {
    unregisterWindowClass(number_);
    throw std::runtime_error("Could not create Message Window");
  }
  OV_DEBUG("WinMessageWindow() - done, m_hWnd=%p", hWnd_);
}

WinMessageWindow::~WinMessageWindow() {
  OV_DEBUG("~WinMessageWindow() - m_hWnd=%p", hWnd_);
  // Messages in the queue die with the window and their pairs stay: to fetch them here would let
  // other windows of this thread run in the middle of a teardown.
  DestroyWindow(toWindow(hWnd_));
  unregisterWindowClass(number_);
}

uint32_t WinMessageWindow::post(AsyncFunction function, void* argument) {
  auto pair = std::make_unique<CallbackPair>(CallbackPair{function, argument});
  if (!PostMessageW(toWindow(hWnd_), kCallbackMessage, 0, reinterpret_cast<LPARAM>(pair.get()))) {
    return GetLastError();
  }
  static_cast<void>(pair.release());  // the message's, until _WinProc takes it
  return 0;  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): owned by the posted message
}

}  // namespace Vantrel::Web
