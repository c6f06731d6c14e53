// A hidden window through which any thread hands a function to the browser's thread: what is posted
// to it runs when the message loop of the thread that made the window turns.
//
// Made and destroyed on the browser's thread by a OneShotManager, which owns it.
#pragma once

#include <cstdint>

namespace Vantrel::Web {

// What it throws is logged and goes no further.
using AsyncFunction = void (*)(void* argument);

class WinMessageWindow {
 public:
  // Throws std::runtime_error if the window cannot be made.
  WinMessageWindow();
  // What is still in the queue for this window is never run.
  ~WinMessageWindow();
  WinMessageWindow(const WinMessageWindow&) = delete;
  WinMessageWindow& operator=(const WinMessageWindow&) = delete;

  // Posts the call; any thread. Returns 0 or the system's error code, and then nothing was posted.
  uint32_t post(AsyncFunction function, void* argument);

  void* handle() const { return hWnd_; }

 private:
  void* hWnd_ = nullptr;
  int32_t number_ = 0;  // of the window and of its class, counted from the module's load
};

}  // namespace Vantrel::Web
