#include "threads/win_message_window.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
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

// The code of the last call's failure, 0 for a success.
DWORD codeOf(bool succeeded) {
  return succeeded ? 0 : GetLastError();
}

DWORD tryToRegister(const ClassName& name) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = _WinProc;
  windowClass.hInstance = module();
  windowClass.lpszClassName = name.text;
  return codeOf(RegisterClassExW(&windowClass) != 0);
}

// Whether no class of that name is left.
bool tryToUnregister(int32_t number) {
  const DWORD code = codeOf(UnregisterClassW(ClassName(number).text, module()) != FALSE);
  return code == 0 || code == ERROR_CLASS_DOES_NOT_EXIST;
}

// A class of its own for every window. One that is there already was left behind by a library that
// has been unloaded, at this one's place, and names a procedure of that; only while a window of it
// lives does it stay, and then it serves as well.
void registerWindowClass(int32_t number) {
  const ClassName name(number);
  DWORD code = tryToRegister(name);
  if (code == ERROR_CLASS_ALREADY_EXISTS && tryToUnregister(number)) code = tryToRegister(name);
  if (code != 0 && code != ERROR_CLASS_ALREADY_EXISTS) {
    throw std::runtime_error("Could not register window class");
  }
}

// Each class holds one of the session's 16,384 atoms. On Windows, a window that goes while its own
// procedure is further up the stack keeps its class for as long; Wine lets the class go at once. So
// the numbers of such classes are kept, without the heap, and tried again when the next window
// comes or goes. More than have room are given up.
class LeftClasses {
 public:
  void unregister(int32_t number) {
    const std::lock_guard<std::mutex> lock(mutex_);
    unregisterAll();
    if (!tryToUnregister(number) && count_ < numbers_.size()) numbers_[count_++] = number;
  }
  void tryAgain() {
    const std::lock_guard<std::mutex> lock(mutex_);
    unregisterAll();
  }

 private:
  void unregisterAll() {
    int32_t* const first = numbers_.data();
    count_ = static_cast<size_t>(std::remove_if(first, first + count_, tryToUnregister) - first);
  }

  static constexpr size_t kRoom = 64;

  std::mutex mutex_;
  std::array<int32_t, kRoom> numbers_ = {};
  size_t count_ = 0;  // of them in use
};

// No local static, whose making leaves handles of the C++ runtime behind at an unload.
LeftClasses leftClasses;

}  // namespace

WinMessageWindow::WinMessageWindow() {
  static std::atomic<int32_t> count = 0;  // each apartment's thread makes windows of its own
  number_ = count++;
  OV_DEBUG("WinMessageWindow() - count=%i", number_);
  const std::wstring title = L"OrvaneWebEventWindow" + std::to_wstring(number_);
  leftClasses.tryAgain();
  registerWindowClass(number_);
  hWnd_ = CreateWindowExW(0, ClassName(number_).text, title.c_str(), WS_POPUP, 0, 0, 0, 0,
                          HWND_MESSAGE, nullptr, module(), nullptr);
  if (hWnd_ == nullptr) {
    leftClasses.unregister(number_);
    throw std::runtime_error("Could not create Message Window");
  }
  OV_DEBUG("WinMessageWindow() - done, m_hWnd=%p", hWnd_);
}

WinMessageWindow::~WinMessageWindow() {
  OV_DEBUG("~WinMessageWindow() - m_hWnd=%p", hWnd_);
  // Messages in the queue die with the window and their pairs stay: to fetch them here would let
  // other windows of this thread run in the middle of a teardown.
  DestroyWindow(toWindow(hWnd_));
  leftClasses.unregister(number_);
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
