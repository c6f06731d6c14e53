// The token of the user that a process is started as.
#pragma once

#include <windows.h>

#include "runtime/ov_process.h"

namespace ov {

inline bool has_token(const ov_process& process) {
  return process.user_token != INVALID_HANDLE_VALUE && process.user_token != nullptr;
}

// Closes the token, if there is one, and marks it closed.
inline void close_token(ov_process* process) {
  if (has_token(*process)) CloseHandle(process->user_token);
  process->user_token = INVALID_HANDLE_VALUE;
}

// Notes what the system tells of a process that has started.
inline void note_started(ov_process* process, const PROCESS_INFORMATION& started) {
  process->process = started.hProcess;
  process->thread = started.hThread;
  process->process_id = static_cast<uint32_t>(started.dwProcessId);
  process->thread_id = static_cast<uint32_t>(started.dwThreadId);
}

}  // namespace ov
