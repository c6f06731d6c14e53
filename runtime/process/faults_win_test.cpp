// Processes and pid files when calls of the system fail with the codes that a case sets.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/real_call_win.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Messages = std::vector<std::string>;
using ov::TempFolder;

struct Faults {
  DWORD wait = WAIT_OBJECT_0;  // the result of a wait, unless it is this one
  DWORD exitCode = 0, write = 0, end = 0, start = 0;
  int endsBefore = 0;  // calls that succeed before `end` is left
  bool shortWrite = false;
  DWORD error = 0;  // what a failed wait leaves
  DWORD flags = 0;  // of the last start
  DWORD mode = 0;   // the thread's error mode during it, or while a library is loaded
  STARTUPINFOW startup = {};
  const STARTUPINFOW* ownStartup = nullptr;  // what this process is told of its own start
} faults;

BOOL fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

DWORD WINAPI waitFor(HANDLE handle, DWORD milliseconds) {
  if (faults.wait == WAIT_OBJECT_0) return WaitForSingleObjectEx(handle, milliseconds, FALSE);
  SetLastError(faults.error);
  return faults.wait;
}

BOOL WINAPI getExitCode(HANDLE process, LPDWORD code) {
  if (faults.exitCode != 0) return fail(faults.exitCode);
  return ov::real_call<decltype(&GetExitCodeProcess)>(L"kernel32.dll", "GetExitCodeProcess")(
      process, code);
}

BOOL WINAPI writeFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written,
                      LPOVERLAPPED overlapped) {
  if (faults.write != 0) return fail(faults.write);
  return ov::real_call<decltype(&WriteFile)>(L"kernel32.dll", "WriteFile")(
      file, data, faults.shortWrite ? size - 1 : size, written, overlapped);
}

BOOL WINAPI setEnd(HANDLE file) {
  if (faults.end != 0 && faults.endsBefore-- == 0) return fail(faults.end);
  return ov::real_call<decltype(&SetEndOfFile)>(L"kernel32.dll", "SetEndOfFile")(file);
}

BOOL WINAPI createProcess(LPCWSTR program, LPWSTR command, LPSECURITY_ATTRIBUTES first,
                          LPSECURITY_ATTRIBUTES second, BOOL inherit, DWORD flags, LPVOID block,
                          LPCWSTR directory, LPSTARTUPINFOW startup,
                          LPPROCESS_INFORMATION started) {
  faults.flags = flags;
  faults.mode = GetThreadErrorMode();
  faults.startup = *startup;
  EXPECT_EQ(nullptr, directory);
  if (faults.start != 0) return fail(faults.start);
  return ov::real_call<decltype(&CreateProcessW)>(L"kernel32.dll", "CreateProcessW")(
      program, command, first, second, inherit, flags, block, directory, startup, started);
}

void WINAPI getStartupInfo(LPSTARTUPINFOW startup) {
  if (faults.ownStartup != nullptr) {
    *startup = *faults.ownStartup;
  } else {
    ov::real_call<decltype(&GetStartupInfoW)>(L"kernel32.dll", "GetStartupInfoW")(startup);
  }
}

HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                         DWORD disposition, DWORD flags, HANDLE sample) {
  faults.mode = GetThreadErrorMode();
  return ov::real_call<decltype(&CreateFileW)>(L"kernel32.dll", "CreateFileW")(
      path, access, share, attributes, disposition, flags, sample);
}

HMODULE WINAPI loadLibrary(LPCWSTR path) {
  faults.mode = GetThreadErrorMode();
  return ov::real_call<decltype(&LoadLibraryW)>(L"kernel32.dll", "LoadLibraryW")(path);
}

}  // namespace

extern "C" {
decltype(&GetStartupInfoW) __imp_GetStartupInfoW = getStartupInfo;
decltype(&CreateFileW) __imp_CreateFileW = createFile;
decltype(&LoadLibraryW) __imp_LoadLibraryW = loadLibrary;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = waitFor;
decltype(&GetExitCodeProcess) __imp_GetExitCodeProcess = getExitCode;
decltype(&WriteFile) __imp_WriteFile = writeFile;
decltype(&SetEndOfFile) __imp_SetEndOfFile = setEnd;
decltype(&CreateProcessW) __imp_CreateProcessW = createProcess;
}

namespace {

DWORD handleCount() {
  DWORD count = 0;
  EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
  return count;
}

class ProcessFaultsTest : public ::testing::Test {
 protected:
  ProcessFaultsTest() { faults = {}; }
  ~ProcessFaultsTest() override { faults = {}; }
  ov::CapturedLog log_;
};

TEST_F(ProcessFaultsTest, WaitThatIsAbandonedOrFails) {
  ov_process process = {};
  process.process = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  process.user_token = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  int32_t state = 9;
  faults.wait = WAIT_ABANDONED;
  EXPECT_EQ(0, ov_process_wait(&process, 1, &state));
  EXPECT_EQ(2, state);
  faults.wait = WAIT_FAILED;
  faults.error = 5;
  EXPECT_EQ(5, ov_process_wait(&process, 1, &state));
  EXPECT_EQ(3, state);
  EXPECT_NE(INVALID_HANDLE_VALUE, process.user_token);
  faults.wait = WAIT_OBJECT_0;
  EXPECT_EQ(0, ov_process_wait(&process, 1, &state));
  EXPECT_EQ(0, state);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process.user_token);
  DWORD flags = 0;
  EXPECT_TRUE(GetHandleInformation(process.process, &flags));  // stays open
  CloseHandle(process.process);
}

TEST_F(ProcessFaultsTest, ExitCodeThatCannotBeRead) {
  ov_process process = {};
  process.process = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  process.user_token = INVALID_HANDLE_VALUE;
  faults.exitCode = 5;
  int32_t state = 9, code = 9;
  EXPECT_EQ(5, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(9, state);
  EXPECT_NE(nullptr, process.process);
  CloseHandle(process.process);
  process.process = INVALID_HANDLE_VALUE;  // would be this process, which runs
  faults.exitCode = 0;
  EXPECT_EQ(6, ov_process_exited(&process, &state, &code));
}

TEST_F(ProcessFaultsTest, CreationFlags) {
  faults.start = 5;
  ov_process process;
  EXPECT_EQ(5, ov_process_create(&process, "cmd.exe"));
  EXPECT_EQ(0x8000000U, faults.flags);
  EXPECT_EQ(Messages{"DBG ov_process_create(): error starting process (errno=5)"}, log_.take());
  EXPECT_EQ(5, ov_process_spawn("cmd.exe", nullptr, 0));
  EXPECT_EQ(0x8000400U, faults.flags);
  EXPECT_EQ(5, ov_process_fork(&process, "cmd.exe", nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr));
  EXPECT_EQ(0x8000400U, faults.flags);
}

TEST_F(ProcessFaultsTest, SpawnClosesItsHandlesWhateverTheWaitGives) {
  EXPECT_EQ(0, ov_process_spawn("cmd.exe /c exit 0", nullptr, 0));
  const DWORD before = handleCount();
  for (const DWORD result : {DWORD{WAIT_TIMEOUT}, WAIT_FAILED}) {
    faults.wait = result;
    EXPECT_EQ(0, ov_process_spawn("cmd.exe /c exit 0", nullptr, 0));
    EXPECT_EQ(before, handleCount());
  }
}

// The streams that a child gets, with a pipe for its output only.
STARTUPINFOW forkedStartup() {
  faults.start = 5;
  void* out = nullptr;
  EXPECT_EQ(5, ov_process_fork(nullptr, "cmd.exe", nullptr, nullptr, nullptr, nullptr, nullptr,
                               &out, nullptr));
  return faults.startup;
}

TEST_F(ProcessFaultsTest, StreamWithoutAPipeIsThisProcesssOwn) {
  int other = 0;
  STARTUPINFOW own = {};
  own.cb = sizeof own;
  own.dwFlags = STARTF_USEHOTKEY;
  own.hStdInput = own.hStdOutput = own.hStdError = &other;  // a hot key and a monitor
  faults.ownStartup = &own;
  const STARTUPINFOW child = forkedStartup();
  EXPECT_EQ(DWORD{STARTF_USESTDHANDLES}, child.dwFlags);
  EXPECT_EQ(GetStdHandle(STD_INPUT_HANDLE), child.hStdInput);
  EXPECT_EQ(GetStdHandle(STD_ERROR_HANDLE), child.hStdError);
  EXPECT_NE(GetStdHandle(STD_OUTPUT_HANDLE), child.hStdOutput);
  EXPECT_NE(own.hStdOutput, child.hStdOutput);
}

TEST_F(ProcessFaultsTest, StreamsThatThisProcessWasStartedWithAreHandedOn) {
  int input = 0;
  int error = 0;
  STARTUPINFOW own = {};
  own.cb = sizeof own;
  own.dwFlags = STARTF_USESTDHANDLES;
  own.hStdInput = &input;
  own.hStdError = &error;
  faults.ownStartup = &own;
  const STARTUPINFOW child = forkedStartup();
  EXPECT_EQ(&input, child.hStdInput);
  EXPECT_EQ(&error, child.hStdError);
  EXPECT_NE(nullptr, child.hStdOutput);
}

TEST_F(ProcessFaultsTest, NoBoxStopsAStartALoadOrAnOpening) {
  const DWORD before = GetThreadErrorMode();
  ASSERT_EQ(0U, before & SEM_FAILCRITICALERRORS);
  faults.start = 21;
  ov_process process;
  const auto expectQuiet = [before] {
    EXPECT_EQ(before | SEM_FAILCRITICALERRORS, faults.mode);
    EXPECT_EQ(before, GetThreadErrorMode());
    faults.mode = 0;
  };
  EXPECT_EQ(21, ov_process_create(&process, "a:/program.exe"));
  expectQuiet();
  EXPECT_EQ(21, ov_process_spawn("a:/program.exe", nullptr, 0));
  expectQuiet();
  forkedStartup();
  expectQuiet();
  ov_library library;
  EXPECT_NE(0, ov_library_open(&library, "a:/library.dll"));
  expectQuiet();
  ov_file file;
  EXPECT_NE(0, ov_file_openread("a:/file", &file));
  expectQuiet();
}

class PidFileFaultsTest : public ProcessFaultsTest {
 protected:
  PidFileFaultsTest() { ov_dir_create(folder_.path("var/run/orvane").c_str(), 0, 1); }
  // The code of a pid file that could not be made, and of which nothing is left.
  ov_rc failure() {
    char* path = const_cast<char*>("old");
    const ov_rc error = ov_process_create_pidfile(folder_.path().c_str(), "test", &path);
    EXPECT_EQ(nullptr, path);
    EXPECT_EQ(2, ov_file_exist(file_.c_str(), 0));
    return error;
  }
  void expectLine(ov_rc error) {
    const Messages lines = log_.take();
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ(0U, lines[0].find("ERR Failure writing to pid file '" + file_ +
                                "', errno:" + std::to_string(error) + ", err desc:"));
  }
  TempFolder folder_;
  const std::string file_ = folder_.path("var/run/orvane/test.pid");
};

TEST_F(PidFileFaultsTest, WriteFails) {
  faults.write = 112;
  EXPECT_EQ(112, failure());
  expectLine(112);
}

TEST_F(PidFileFaultsTest, WriteIsShort) {
  faults.shortWrite = true;
  const ov_rc error = failure();
  EXPECT_NE(0, error);
  expectLine(error);
}

TEST_F(PidFileFaultsTest, TruncationFails) {
  faults.end = 5;
  faults.endsBefore = 1;  // the file is emptied when it is opened
  EXPECT_EQ(5, failure());
  EXPECT_EQ(Messages{"LOG ov_filetruncate: SetFileEnd failed, error=5"}, log_.take());
}

}  // namespace
