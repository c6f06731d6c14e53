// Starting a process as the user whose token its record holds.
#pragma once

#include <windows.h>

#include "runtime/ov_process.h"
#include "runtime/process/child_pipes_win.h"

namespace ov {

// The user's profile and environment, with this thread in the user's place; at the end all of it is
// undone and the token closed.
class UserSession {
 public:
  explicit UserSession(ov_process* process) : process_(process) {}
  ~UserSession();
  UserSession(const UserSession&) = delete;
  UserSession& operator=(const UserSession&) = delete;

  ov_rc open();
  // Starts the process in `directory` or, for null, in the user's profile, and fills the record.
  ov_rc start(wchar_t* command, const wchar_t* directory, const ChildPipes& pipes);

 private:
  ov_process* const process_;
  HANDLE profile_ = nullptr;
  void* environment_ = nullptr;
  bool impersonates_ = false;
  bool started_ = false;
};

}  // namespace ov
