// Watching and ending other processes.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/process/token_win.h"

using namespace ov;

static_assert(sizeof(ov_process::user_name) == 1024 && sizeof(ov_process::domain) == 1024);

namespace {

constexpr int32_t kRunning = 0;
constexpr int32_t kExited = 1;

// All ones stands for this process in the system's eyes, not for a closed handle.
bool is_open(const ov_process* process) {
  return process->process != nullptr && process->process != INVALID_HANDLE_VALUE;
}

}  // namespace

ov_rc ov_process_exited(ov_process* process, int32_t* state, int32_t* exitCode) {
  if (process == nullptr || state == nullptr || exitCode == nullptr) return OV_EINVAL;
  if (!is_open(process)) return OV_EBADF;
  DWORD code = 0;
  if (!GetExitCodeProcess(process->process, &code)) return last_code();
  if (code == STILL_ACTIVE) {
    *state = kRunning;
    return 0;
  }
  *state = kExited;
  *exitCode = static_cast<int32_t>(code);
  close_token(process);
  CloseHandle(process->process);
  CloseHandle(process->thread);
  // Null, not all ones: that is the system's name of this process, which runs.
  process->process = nullptr;
  process->thread = nullptr;
  return 0;
}

ov_rc ov_process_kill(ov_process* process) {
  if (process == nullptr) return OV_EINVAL;
  if (!is_open(process)) return OV_EBADF;
  return code_of(TerminateProcess(process->process, 0));
}

ov_rc ov_process_wait(ov_process* process, int32_t milliseconds, int32_t* state) {
  if (process == nullptr || state == nullptr) return OV_EINVAL;
  const bool open = is_open(process);
  const DWORD result =
      open ? WaitForSingleObject(process->process, static_cast<DWORD>(milliseconds)) : WAIT_FAILED;
  if (result == WAIT_OBJECT_0) {
    *state = 0;
    close_token(process);
    return 0;
  }
  if (result == WAIT_TIMEOUT || result == WAIT_ABANDONED) {
    *state = result == WAIT_TIMEOUT ? 1 : 2;
    return 0;
  }
  *state = 3;
  return open ? last_code() : OV_EBADF;
}
