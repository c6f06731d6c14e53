// Watching and ending other processes, and the environment of this one.
#include <windows.h>

#include <memory>
#include <new>

#include "runtime/errors/asserts.h"
#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/process/starting_win.h"

using namespace ov;

static_assert(sizeof(ov_process::user_name) == 1024 && sizeof(ov_process::domain) == 1024);

namespace {

// All ones stands for this process in the system's eyes, not for a closed handle.
bool is_open(const ov_process* process) {
  return process->process != nullptr && process->process != INVALID_HANDLE_VALUE;
}

// In characters: the longest name, and the longest value that the system keeps, with terminators.
constexpr size_t kNameSize = 8192;
constexpr size_t kLongestValue = 32768;
// The longest value that can be set: the system counts its bytes with the terminator in 16 bits.
constexpr size_t kLongestSet = 32767;

}  // namespace

ov_rc ov_process_exited(ov_process* process, int32_t* state, int32_t* exitCode) {
  if (process == nullptr || state == nullptr || exitCode == nullptr) return OV_EINVAL;
  if (!is_open(process)) return OV_EBADF;
  DWORD code = 0;
  if (!GetExitCodeProcess(process->process, &code)) return last_code();
  if (code == STILL_ACTIVE) {
    *state = OV_PROCESS_RUNNING;
    return 0;
  }
  *state = OV_PROCESS_EXITED;
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
    *state = OV_PROCESS_WAIT_ENDED;
    close_token(process);
    return 0;
  }
  if (result == WAIT_TIMEOUT || result == WAIT_ABANDONED) {
    *state = result == WAIT_TIMEOUT ? OV_PROCESS_WAIT_TIMEOUT : OV_PROCESS_WAIT_ABANDONED;
    return 0;
  }
  *state = OV_PROCESS_WAIT_FAILED;
  return open ? last_code() : OV_EBADF;
}

ov_rc ov_process_getenv(const char* name, char* buffer, size_t size) {
  if (!assert_not_null(name) || buffer == nullptr || size == 0) return OV_EINVAL;
  const size_t wideSize = size < kLongestValue ? size : kLongestValue;
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[kNameSize + wideSize]);
  if (wide == nullptr) return OV_ENOMEM;
  size_t nameBytes = kNameSize * sizeof(wchar_t);
  const ov_rc error = ov_utf8_to_wchar(name, wide.get(), &nameBytes);
  if (error != 0) return error;
  wchar_t* const value = wide.get() + kNameSize;
  const DWORD length = GetEnvironmentVariableW(wide.get(), value, static_cast<DWORD>(wideSize));
  if (length == 0) return OV_EINVAL;
  if (length >= wideSize) return OV_EBUFFER;
  return ov_wchar_to_utf8(value, buffer, &size);
}

ov_rc ov_process_setenv(const char* name, const char* value) {
  if (name == nullptr) return OV_EINVAL;
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[kNameSize + kLongestSet]);
  if (wide == nullptr) return OV_ENOMEM;
  size_t bytes = kNameSize * sizeof(wchar_t);
  ov_rc error = ov_utf8_to_wchar(name, wide.get(), &bytes);
  if (error != 0) return error;
  wchar_t* const wideValue = wide.get() + kNameSize;
  bytes = kLongestSet * sizeof(wchar_t);
  if (value != nullptr) error = ov_utf8_to_wchar(value, wideValue, &bytes);
  if (error != 0) return error;
  return code_of(SetEnvironmentVariableW(wide.get(), value == nullptr ? nullptr : wideValue));
}
