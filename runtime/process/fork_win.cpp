// Starting processes with pipes to their standard streams, also as another user.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/process/child_pipes_win.h"
#include "runtime/process/token_win.h"
#include "runtime/process/user_session_win.h"
#include "runtime/process/wide_command_win.h"

using namespace ov;

namespace {

// A token that the hook brought does not outlive a start that failed.
class TokenGuard {
 public:
  explicit TokenGuard(ov_process* process) : process_(process) {}
  ~TokenGuard() { close_token(process_); }
  TokenGuard(const TokenGuard&) = delete;
  TokenGuard& operator=(const TokenGuard&) = delete;

 private:
  ov_process* const process_;
};

ov_rc start_as_user(ov_process* process, wchar_t* command, const wchar_t* directory,
                    const ChildPipes& pipes) {
  UserSession session(process);
  const ov_rc error = session.open();
  return error != 0 ? error : session.start(command, directory, pipes);
}

ov_rc start(ov_process* process, wchar_t* command, const ChildPipes& pipes) {
  STARTUPINFOW startup;
  GetStartupInfoW(&startup);
  startup.dwFlags |= STARTF_USESTDHANDLES;
  pipes.fill(&startup);
  PROCESS_INFORMATION started;
  if (!CreateProcessW(nullptr, command, nullptr, nullptr, pipes.any() ? TRUE : FALSE,
                      CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT, nullptr, nullptr, &startup,
                      &started)) {
    return last_code();
  }
  note_started(process, started);
  return 0;
}

}  // namespace

ov_rc ov_process_fork(ov_process* process, const char* command, const char* directory, void*,
                      ov_rc (*hook)(ov_process*, void*), void* hookArgument, void** stdinOut,
                      void** stdoutOut, void** stderrOut) {
  ov_process local;
  const bool isLocal = process == nullptr;
  if (isLocal) process = &local;
  *process = {};
  process->user_token = INVALID_HANDLE_VALUE;
  WideCommand wide(command);
  if (wide.error() != 0) return wide.error();
  wchar_t wideDirectory[OV_PATH_SIZE];
  size_t bytes = sizeof wideDirectory;
  ov_rc error = directory == nullptr ? 0 : ov_utf8_to_wchar(directory, wideDirectory, &bytes);
  if (error != 0) return error;
  const TokenGuard token(process);
  if (hook != nullptr) error = hook(process, hookArgument);
  if (error != 0) return error;
  ChildPipes pipes;
  error = pipes.addInput(stdinOut);
  if (error == 0) error = pipes.addOutput(stdoutOut);
  if (error == 0) error = pipes.addError(stderrOut);
  if (error != 0) return error;
  error = has_token(*process) ? start_as_user(process, wide.text(),
                                              directory == nullptr ? nullptr : wideDirectory, pipes)
                              : start(process, wide.text(), pipes);
  if (error != 0) return error;
  pipes.keep();
  if (isLocal) {  // nobody else can
    CloseHandle(local.process);
    CloseHandle(local.thread);
  }
  return 0;
}
