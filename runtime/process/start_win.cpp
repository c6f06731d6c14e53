// Starting processes: plainly, with an environment of their own, and with pipes to their standard
// streams, then also as another user.
#include <windows.h>

#include <algorithm>
#include <memory>
#include <new>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/process/environment_block.h"
#include "runtime/process/starting_win.h"

using namespace ov;

static_assert(sizeof(wchar_t) == sizeof(uint16_t));

namespace {

constexpr DWORD kGraceMilliseconds = 500;
constexpr size_t kRootSize = 502;

// Without a console window, with `environment` or, for null, that of this process.
ov_rc start(wchar_t* command, void* environment, PROCESS_INFORMATION* started) {
  STARTUPINFOW startup;
  GetStartupInfoW(&startup);
  const DWORD flags = CREATE_NO_WINDOW | (environment == nullptr ? 0 : CREATE_UNICODE_ENVIRONMENT);
  const QuietDrives quiet;
  return code_of(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, flags, environment,
                                nullptr, &startup, started));
}

// Without handles of the parent's parent the fields for them hold something else: the number of a
// monitor or a hot key.
void use_own_streams(STARTUPINFOW* startup) {
  startup->dwFlags &= ~DWORD{STARTF_USEHOTKEY};
  startup->dwFlags |= STARTF_USESTDHANDLES;
  startup->hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  startup->hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
  startup->hStdError = GetStdHandle(STD_ERROR_HANDLE);
}

ov_rc start_with_streams(ov_process* process, wchar_t* command, const ChildPipes& pipes) {
  STARTUPINFOW startup;
  GetStartupInfoW(&startup);
  if ((startup.dwFlags & STARTF_USESTDHANDLES) == 0) use_own_streams(&startup);
  pipes.fill(&startup);
  PROCESS_INFORMATION started;
  const QuietDrives quiet;
  if (!CreateProcessW(nullptr, command, nullptr, nullptr, pipes.any() ? TRUE : FALSE,
                      CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT, nullptr, nullptr, &startup,
                      &started)) {
    return last_code();
  }
  note_started(process, started);
  return 0;
}

ov_rc start_as_user(ov_process* process, wchar_t* command, const wchar_t* directory,
                    const ChildPipes& pipes) {
  UserSession session(process);
  const ov_rc error = session.open();
  return error != 0 ? error : session.start(command, directory, pipes);
}

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

void clear(ov_process* process) {
  *process = {};
  process->user_token = INVALID_HANDLE_VALUE;
}

}  // namespace

ChildPipes::~ChildPipes() {
  for (const Pipe& pipe : pipes_) {
    if (!pipe.child) continue;
    CloseHandle(*pipe.ours);
    *pipe.ours = nullptr;
  }
}

ov_rc ChildPipes::add(Stream stream, void** ours) {
  if (ours == nullptr) return 0;
  *ours = nullptr;
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  KernelHandle readEnd;
  KernelHandle writeEnd;
  if (!CreatePipe(readEnd.out(), writeEnd.out(), &inheritable, 0)) return last_code();
  KernelHandle& child = stream == kInput ? readEnd : writeEnd;
  const KernelHandle& parent = stream == kInput ? writeEnd : readEnd;
  const HANDLE self = GetCurrentProcess();
  if (!DuplicateHandle(self, parent.get(), self, ours, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
    *ours = nullptr;
    return last_code();
  }
  pipes_[stream] = {std::move(child), ours};
  return 0;
}

bool ChildPipes::any() const {
  return std::ranges::any_of(pipes_, [](const Pipe& pipe) { return bool{pipe.child}; });
}

void ChildPipes::fill(STARTUPINFOW* startup) const {
  if (pipes_[kInput].child) startup->hStdInput = pipes_[kInput].child.get();
  if (pipes_[kOutput].child) startup->hStdOutput = pipes_[kOutput].child.get();
  if (pipes_[kError].child) startup->hStdError = pipes_[kError].child.get();
}

void ChildPipes::keep() {
  for (Pipe& pipe : pipes_) pipe.child.release();
}

ov_rc ov_process_create(ov_process* process, const char* command) {
  if (process == nullptr) return OV_EINVAL;
  clear(process);
  WideCommand wide(command);
  if (wide.error() != 0) return wide.error();
  PROCESS_INFORMATION started;
  const ov_rc error = start(wide.text(), nullptr, &started);
  if (error != 0) {
    OV_DEBUG("ov_process_create(): error starting process (errno=%d)", error);
    return error;
  }
  note_started(process, started);
  return 0;
}

ov_rc ov_process_spawnas(const char* command, const char* const* environment, int32_t count,
                         int32_t) {
  struct Block {
    uint16_t units[kEnvironmentBlockUnits];
  };
  const std::unique_ptr<Block> block(new (std::nothrow) Block);
  if (block == nullptr) return OV_ENOMEM;
  char root[kRootSize];
  if (ov_process_getenv("SystemRoot", root, sizeof root) != 0) root[0] = '\0';
  ov_rc error = build_environment_block(root, environment, count, block->units);
  if (error != 0) return error;
  WideCommand wide(command);
  if (wide.error() != 0) return wide.error();
  PROCESS_INFORMATION started;
  error = start(wide.text(), block->units, &started);
  if (error != 0) return error;
  const KernelHandle child(started.hProcess);
  const KernelHandle thread(started.hThread);
  WaitForSingleObject(child.get(), kGraceMilliseconds);
  return 0;
}

ov_rc ov_process_spawn(const char* command, const char* const* environment, int32_t count) {
  return ov_process_spawnas(command, environment, count, 0);
}

ov_rc ov_process_fork(ov_process* process, const char* command, const char* directory, void*,
                      ov_rc (*hook)(ov_process*, void*), void* hookArgument, void** stdinOut,
                      void** stdoutOut, void** stderrOut) {
  ov_process local;
  const bool isLocal = process == nullptr;
  if (isLocal) process = &local;
  clear(process);
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
                              : start_with_streams(process, wide.text(), pipes);
  if (error != 0) return error;
  pipes.keep();
  if (isLocal) {  // nobody else can close them
    const KernelHandle child(local.process);
    const KernelHandle thread(local.thread);
  }
  return 0;
}
