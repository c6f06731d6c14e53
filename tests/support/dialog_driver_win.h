// Answers a modal dialog of the calling thread from a thread of its own, as a user would.
//
//   DialogDriver driver([](HWND dialog) { DialogDriver::accept(dialog, L"a.txt"); });
//   ... the call that shows the dialog ...
//
// Made and destroyed by the thread that shows the dialog; the action runs once, on the driver's
// thread, when the dialog has been visible for a moment.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace Vantrel::Web::TestSupport {

class DialogDriver {
 public:
  using Action = std::function<void(HWND dialog)>;

  explicit DialogDriver(Action action);
  // Waits for the action's end; fails the test if no dialog came.
  ~DialogDriver();
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;

  // Puts the text where the name of a file is typed, and tells what stands there.
  static void type(HWND dialog, const std::wstring& text);
  static std::wstring typed(HWND dialog);
  // The OK button, with or without a text first; the Cancel button; the cross.
  static void accept(HWND dialog);
  static void accept(HWND dialog, const std::wstring& text);
  static void cancel(HWND dialog);
  // Presses OK where that must not end the dialog, and cancels it then.
  static void acceptInVain(HWND dialog);
  static void close(HWND dialog);
  // Waits for a question that the dialog asks, and answers it with a button's number, such as
  // IDYES.
  static void answer(HWND dialog, WORD button);
  // Waits for a second dialog of the same thread; null if none comes.
  static HWND another(HWND dialog);
  // Waits until a dialog is no longer to be seen.
  static void waitUntilGone(HWND dialog);
  // Selects the rows of the list of files that have this name; how many there were.
  static int select(HWND dialog, const std::wstring& name);

 private:
  static DWORD WINAPI run(void* self);

  const Action action_;
  const DWORD thread_;
  HANDLE handle_ = nullptr;
  bool found_ = false;
};

// What the page does while the user looks at a dialog: a function that the driver lets the dialog's
// thread run, in the middle of the dialog's message loop. Made by the dialog's thread.
class PageTask {
 public:
  explicit PageTask(std::function<void()> function);
  ~PageTask();
  PageTask(const PageTask&) = delete;
  PageTask& operator=(const PageTask&) = delete;

  // For the driver's thread; returns when the function has.
  void run() const;

 private:
  static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  const std::function<void()> function_;
  HWND window_ = nullptr;
};

}  // namespace Vantrel::Web::TestSupport
