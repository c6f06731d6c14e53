// Shell dialog objects of a test's own in place of the platform's. They note every call with what
// it was given, in order, fail where the test says so, and count the references that are left.
//
// One FakeFileDialogs at a time, on a thread with COM.
#pragma once

#include <windows.h>
#include <shobjidl.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Vantrel::Web::TestSupport {

class FakeFileDialogs {
 public:
  // Registers the class objects, which CoCreateInstance then finds before the platform's.
  FakeFileDialogs();
  // Fails the test if an object is left.
  ~FakeFileDialogs();
  FakeFileDialogs(const FakeFileDialogs&) = delete;
  FakeFileDialogs& operator=(const FakeFileDialogs&) = delete;

  // The calls without those that only begin or end a reference, such as "SetTitle T".
  std::vector<std::string> calls;
  // Results by the name of the call; S_OK for those that are not here.
  std::map<std::string, HRESULT> results;
  // The chosen paths, and what GetOptions tells.
  std::vector<std::wstring> chosen;
  FILEOPENDIALOGOPTIONS options = 0x1808;
  // Whether a call by its name is to fail, asked for every one; none does if it is empty.
  std::function<bool(const std::string& name)> fails;
  // What happens while a dialog is shown.
  std::function<void()> onShow;
  // The owner that the dialog was shown with.
  HWND owner = nullptr;
  // Whether the window was enabled while the dialog was shown.
  HWND watched = nullptr;
  bool watchedEnabled = false;
  int living = 0;

  // Notes a call; its result.
  HRESULT note(const std::string& name, const std::string& arguments = "");

 private:
  DWORD open_ = 0;
  DWORD save_ = 0;
};

}  // namespace Vantrel::Web::TestSupport
