// A COM container that counts. It stands for one apartment of a browser: brings COM up on its
// thread, has a window that is never shown, and keeps a book on all objects that it hands to
// controls. A test ends with finish(), which reports every fault: references that are left, calls
// from another thread, controls that were never released.
//
// All of it belongs to the constructing thread. Several may stand in a process, one a thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/container/control_library_win.h"
#include "tests/container/reference_book_win.h"
#include "tests/host/call_log.h"
#include "tests/host/faults.h"

namespace Vantrel::Web::Container {

class CountingContainer {
 public:
  // For scripts alone.
  CountingContainer();
  // The library outlives the container.
  explicit CountingContainer(ControlLibrary& library);
  CountingContainer(const CountingContainer&) = delete;
  CountingContainer& operator=(const CountingContainer&) = delete;
  ~CountingContainer();

  ControlLibrary& library() const { return *library_; }
  HWND window() const { return window_; }

  // Closes the book. Returns all faults so far; objects of the book may be looked at until the end.
  std::vector<std::string> finish();

  // Runs window messages until `done` or the time is over. Returns done().
  bool pumpUntil(const std::function<bool()>& done, uint64_t timeoutMs = 20000);
  void pumpFor(uint64_t milliseconds);
  void pumpOnce();
  // Runs after each turn of the message loop, as a host's timers do.
  std::function<void()> onTurn;

  // Controls that were made and not released.
  int controls = 0;

  Host::Faults faults;
  Host::CallLog calls;
  ReferenceBook book;

 private:
  ControlLibrary* library_ = nullptr;
  HWND window_ = nullptr;
};

}  // namespace Vantrel::Web::Container
