#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "runtime/ov_process.h"

namespace {

constexpr ov_rc kHookRefuses = 77;

// What is in the pipe once its writer has ended.
std::string content(HANDLE pipe) {
  DWORD available = 0;
  EXPECT_TRUE(PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr));
  std::string text(available, '\0');
  DWORD read = 0;
  if (available > 0) {
    EXPECT_TRUE(ReadFile(pipe, text.data(), available, &read, nullptr));
  }
  text.resize(read);
  return text;
}

int32_t exitCode(ov_process* process) {
  int32_t state = 9;
  int32_t code = -1;
  EXPECT_EQ(0, ov_process_wait(process, -1, &state));
  EXPECT_EQ(0, ov_process_exited(process, &state, &code));
  EXPECT_EQ(1, state);
  return code;
}

DWORD handleCount() {
  DWORD count = 0;
  EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
  return count;
}

bool isInherited(HANDLE handle) {
  DWORD flags = HANDLE_FLAG_INHERIT;
  EXPECT_TRUE(GetHandleInformation(handle, &flags));
  return (flags & HANDLE_FLAG_INHERIT) != 0;
}

// Notes the record and refuses with its result.
struct Hook {
  static ov_rc call(ov_process* process, void* argument) {
    Hook* const self = static_cast<Hook*>(argument);
    self->record = process;
    self->token = process->user_token;
    self->id = process->process_id;
    return self->result;
  }
  ov_rc result = 0;
  ov_process* record = nullptr;
  void* token = nullptr;
  uint32_t id = 9;
};

TEST(ProcessForkTest, OutputAndErrorAreRead) {
  ov_process process;
  void* out = nullptr;
  void* error = nullptr;
  ASSERT_EQ(0, ov_process_fork(&process, "cmd.exe /c echo hello& echo oops 1>&2& exit 4", nullptr,
                               nullptr, nullptr, nullptr, nullptr, &out, &error));
  EXPECT_NE(0U, process.process_id);
  EXPECT_NE(0U, process.thread_id);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process.user_token);
  EXPECT_FALSE(isInherited(out));
  EXPECT_FALSE(isInherited(error));
  EXPECT_EQ(4, exitCode(&process));
  EXPECT_EQ("hello\r\n", content(out));
  EXPECT_EQ("oops \r\n", content(error));
  // The child's ends are still open here, so the pipes are not broken.
  EXPECT_EQ("", content(out));
  EXPECT_EQ("", content(error));
  CloseHandle(out);
  CloseHandle(error);
}

TEST(ProcessForkTest, InputIsWritten) {
  ov_process process;
  void* in = nullptr;
  void* out = nullptr;
  ASSERT_EQ(0, ov_process_fork(&process, "cmd.exe", nullptr, nullptr, nullptr, nullptr, &in, &out,
                               nullptr));
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(in, "exit 7\r\n", 8, &written, nullptr));
  EXPECT_EQ(7, exitCode(&process));
  CloseHandle(in);
  CloseHandle(out);
}

TEST(ProcessForkTest, WithoutPipesInTheCallersDirectory) {
  ov_process process;
  Hook hook;
  // The directory is for another user's processes.
  ASSERT_EQ(0, ov_process_fork(&process, "cmd.exe /c exit 3", "C:/no-such-directory", nullptr,
                               Hook::call, &hook, nullptr, nullptr, nullptr));
  EXPECT_EQ(&process, hook.record);
  EXPECT_EQ(INVALID_HANDLE_VALUE, hook.token);
  EXPECT_EQ(0U, hook.id);
  EXPECT_EQ(3, exitCode(&process));
}

TEST(ProcessForkTest, WithoutARecordNothingStaysOpen) {
  Hook hook;
  const auto run = [&hook] {
    return ov_process_fork(nullptr, "cmd.exe /c exit 0", nullptr, nullptr, Hook::call, &hook,
                           nullptr, nullptr, nullptr);
  };
  ASSERT_EQ(0, run());  // what the system opens once
  EXPECT_NE(nullptr, hook.record);
  const DWORD before = handleCount();
  EXPECT_EQ(0, run());
  EXPECT_EQ(before, handleCount());
}

TEST(ProcessForkTest, HookMayRefuse) {
  ov_process process;
  Hook hook;
  hook.result = kHookRefuses;
  void* out = &hook;
  EXPECT_EQ(kHookRefuses, ov_process_fork(&process, "cmd.exe /c exit 0", nullptr, nullptr,
                                          Hook::call, &hook, nullptr, &out, nullptr));
  EXPECT_EQ(nullptr, process.process);
  EXPECT_EQ(&hook, out);  // no pipe was made
}

TEST(ProcessForkTest, FailedStartClosesEveryPipe) {
  ov_process process;
  void* pipes[3];
  const auto fail = [&] {
    std::fill_n(pipes, 3, &process);
    return ov_process_fork(&process, "no-such-program.exe", nullptr, nullptr, nullptr, nullptr,
                           &pipes[0], &pipes[1], &pipes[2]);
  };
  EXPECT_EQ(2, fail());
  const DWORD before = handleCount();
  EXPECT_EQ(2, fail());
  EXPECT_EQ(before, handleCount());
  for (void* const pipe : pipes) EXPECT_EQ(nullptr, pipe);
  EXPECT_EQ(nullptr, process.process);
}

TEST(ProcessForkTest, TextsThatCannotBeConverted) {
  ov_process process;
  process.process = &process;
  const auto fork = [&process](const char* command, const char* directory) {
    return ov_process_fork(&process, command, directory, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr);
  };
  EXPECT_EQ(22, fork(nullptr, nullptr));
  EXPECT_EQ(nullptr, process.process);
  EXPECT_EQ(22, fork("\xFF", nullptr));
  EXPECT_EQ(22, fork("cmd.exe", "\xFF"));
  EXPECT_EQ(122, fork("cmd.exe", std::string(600, 'x').c_str()));
  EXPECT_EQ(122, fork(std::string(40000, 'x').c_str(), nullptr));
}

TEST(ProcessForkTest, LongCommandGoesThroughTheLargeBuffer) {
  ov_process process;
  const std::string command = "cmd.exe /c exit 6 " + std::string(7000, ' ');
  ASSERT_EQ(0, ov_process_fork(&process, command.c_str(), nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr));
  EXPECT_EQ(6, exitCode(&process));
}

}  // namespace
