// What the starters of processes share: owned handles, the command line, pipes to the standard
// streams, the token of another user and that user's session. Not part of the public header.
#pragma once

#include <windows.h>

#include <memory>
#include <new>
#include <utility>

#include "runtime/errors/quiet_drives_win.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"

namespace ov {

// A handle of the kernel, null for none; closed with its owner unless it is released.
class KernelHandle {
 public:
  KernelHandle() = default;
  explicit KernelHandle(HANDLE handle) : handle_(handle) {}
  KernelHandle(KernelHandle&& other) noexcept : handle_(other.release()) {}
  KernelHandle& operator=(KernelHandle&& other) noexcept {
    KernelHandle(std::move(other)).swap(*this);
    return *this;
  }
  ~KernelHandle() {
    if (handle_ != nullptr) CloseHandle(handle_);
  }

  explicit operator bool() const { return handle_ != nullptr; }
  HANDLE get() const { return handle_; }
  // Where a call of the system stores a handle; there must be none yet.
  HANDLE* out() { return &handle_; }
  HANDLE release() { return std::exchange(handle_, nullptr); }
  void swap(KernelHandle& other) noexcept { std::swap(handle_, other.handle_); }

 private:
  HANDLE handle_ = nullptr;
};

// A command line as wide text that the system may write into. Converts in the constructor; on the
// stack at the usual lengths, else on the heap. `error` is not 0 when that failed.
class WideCommand {
 public:
  explicit WideCommand(const char* command) : text_(local_) {
    size_t bytes = sizeof local_;
    error_ = command == nullptr ? OV_EINVAL : ov_utf8_to_wchar(command, local_, &bytes);
    if (error_ != OV_ERANGE) return;
    heap_.reset(new (std::nothrow) wchar_t[kLargeSize / sizeof(wchar_t)]);
    bytes = kLargeSize;
    text_ = heap_.get();
    error_ = text_ == nullptr ? OV_ENOMEM : ov_utf8_to_wchar(command, text_, &bytes);
  }
  ov_rc error() const { return error_; }
  wchar_t* text() { return text_; }

 private:
  static constexpr size_t kSize = 8192;  // bytes
  static constexpr size_t kLargeSize = 65536;
  wchar_t local_[kSize / sizeof(wchar_t)];
  std::unique_ptr<wchar_t[]> heap_;
  wchar_t* text_;
  ov_rc error_;
};

// Pipes to the standard streams of a process that is to be started.
class ChildPipes {
 public:
  ChildPipes() = default;
  // Closes both ends of every pipe and clears where our end was handed out, unless they are kept.
  ~ChildPipes();
  ChildPipes(const ChildPipes&) = delete;
  ChildPipes& operator=(const ChildPipes&) = delete;

  // Make a pipe and hand out this process's end, which children do not inherit; for null they do
  // nothing.
  ov_rc addInput(void** ours) { return add(kInput, ours); }
  ov_rc addOutput(void** ours) { return add(kOutput, ours); }
  ov_rc addError(void** ours) { return add(kError, ours); }

  bool any() const;
  // Puts the child's ends of the pipes there are into the startup values.
  void fill(STARTUPINFOW* startup) const;
  // The process has started: all ends stay open.
  void keep();

 private:
  enum Stream { kInput, kOutput, kError, kStreams };
  struct Pipe {
    KernelHandle child;
    void** ours = nullptr;
  };

  ov_rc add(Stream stream, void** ours);

  Pipe pipes_[kStreams];
};

// The token of the user that a process is started as.
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

// The profile and environment of the user whose token the record holds, with this thread in the
// user's place; at the end all of it is undone and the token closed.
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
