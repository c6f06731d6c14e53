#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;
using Messages = std::vector<std::string>;

TEST(ProcessesTest, CreateWaitAndExit) {
  ov_process process;
  ASSERT_EQ(0, ov_process_create(&process, "cmd.exe /c exit 5"));
  EXPECT_NE(0U, process.process_id);
  EXPECT_NE(0U, process.thread_id);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process.user_token);
  int32_t state = 9;
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_wait(&process, -1, &state));
  EXPECT_EQ(0, state);
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(1, state);
  EXPECT_EQ(5, code);
  EXPECT_EQ(6, ov_process_wait(&process, 0, &state));
  EXPECT_EQ(3, state);
  process.process = INVALID_HANDLE_VALUE;
  EXPECT_EQ(6, ov_process_wait(&process, -1, &state));
  EXPECT_EQ(6, ov_process_kill(&process));
}

TEST(ProcessesTest, RunningProcessIsWaitedForInVainAndKilled) {
  wchar_t command[] = L"cmd.exe /c exit 9";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started;
  ASSERT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                             nullptr, &startup, &started));
  ov_process process = {};
  process.process = started.hProcess;
  process.thread = started.hThread;
  process.user_token = INVALID_HANDLE_VALUE;
  int32_t state = 9;
  EXPECT_EQ(0, ov_process_wait(&process, 0, &state));
  EXPECT_EQ(1, state);
  EXPECT_EQ(0, ov_process_kill(&process));
  EXPECT_EQ(0, ov_process_wait(&process, -1, &state));
  EXPECT_EQ(0, state);
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(1, state);
  EXPECT_EQ(0, code);
}

TEST(ProcessesTest, LongCommandGoesThroughTheLargeBuffer) {
  ov_process process;
  const std::string command = "cmd.exe /c exit 3 " + std::string(7000, ' ');
  ASSERT_EQ(0, ov_process_create(&process, command.c_str()));
  int32_t state = 9;
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_wait(&process, -1, &state));
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(3, code);
  EXPECT_EQ(122, ov_process_create(&process, std::string(40000, 'x').c_str()));
}

TEST(ProcessesTest, StartFailures) {
  ov::CapturedLog log;
  ov_process process;
  EXPECT_EQ(2, ov_process_create(&process, "no-such-program.exe"));
  EXPECT_EQ(Messages{"DBG ov_process_create(): error starting process (errno=2)"}, log.take());
  EXPECT_EQ(22, ov_process_create(nullptr, "x"));
  EXPECT_EQ(22, ov_process_create(&process, nullptr));
  EXPECT_EQ(22, ov_process_create(&process, "\xFF"));
  EXPECT_EQ(2, ov_process_spawn("no-such-program.exe", nullptr, 0));
  EXPECT_EQ(22, ov_process_spawn(nullptr, nullptr, 0));
  EXPECT_EQ(22, ov_process_spawnas(nullptr, nullptr, 0, 1));
  const char* const entries[] = {"A=\xFF"};
  EXPECT_EQ(8, ov_process_spawn("cmd.exe", entries, 1));
  int32_t state;
  EXPECT_EQ(22, ov_process_wait(nullptr, 0, &state));
  EXPECT_EQ(22, ov_process_wait(&process, 0, nullptr));
  EXPECT_EQ(22, ov_process_kill(nullptr));
}

TEST(ProcessesTest, LastArgumentOfASpawnIsNotRead) {
  const TempFolder folder;
  const std::string command = "cmd.exe /c echo x>" + folder.path("done");
  EXPECT_EQ(0, ov_process_spawnas(command.c_str(), nullptr, 0, 1));
  while (TempFolder::read(folder.path("done")) != "x\r\n") Sleep(10);
}

TEST(ProcessesTest, LogOnNeedsAUserAndAPassword) {
  ov_process process;
  const ov_credentials nobody = {nullptr, ""};
  EXPECT_EQ(22, ov_process_runas(&process, &nobody));
  EXPECT_EQ(22, ov_process_runas(&process, nullptr));
  EXPECT_EQ(22, ov_process_runas(nullptr, &nobody));
  const std::string domain(512, 'd');
  const std::string user = domain + "\\bob";
  const ov_credentials longDomain = {user.c_str(), "secret"};
  EXPECT_EQ(122, ov_process_runas(&process, &longDomain));
}

// What a process that is spawned with these entries has for an environment.
std::string spawnedEnvironment(const std::vector<const char*>& entries) {
  const TempFolder folder;
  const std::string file = folder.path("environment");
  std::string command = "cmd.exe /c set > " + file;
  for (size_t i = command.find('>'); i < command.size(); ++i) {
    if (command[i] == '/') command[i] = '\\';
  }
  EXPECT_EQ(
      0, ov_process_spawn(command.c_str(), entries.data(), static_cast<int32_t>(entries.size())));
  std::string content;
  while ((content = TempFolder::read(file)).find("SystemRoot=") == std::string::npos) Sleep(10);
  return content;
}

TEST(ProcessesTest, SpawnHandsOverOnlyItsOwnEnvironment) {
  SetEnvironmentVariableW(L"OV_OUTSIDE", L"1");
  const std::string content = spawnedEnvironment({"OV_INSIDE=2"});
  EXPECT_NE(std::string::npos, content.find("OV_INSIDE=2"));
  EXPECT_EQ(std::string::npos, content.find("OV_OUTSIDE"));
}

TEST(ProcessesTest, SpawnWithoutAnEnvironmentHandsOverTheSystemRoot) {
  char root[520];
  ASSERT_EQ(0, ov_process_getenv("SystemRoot", root, sizeof root));
  EXPECT_NE(std::string::npos, spawnedEnvironment({}).find("SystemRoot=" + std::string(root)));
}

TEST(ProcessesTest, SpawnCutsALongEnvironment) {
  EXPECT_EQ(
      0, ov_process_spawn("cmd.exe /c exit 0", std::vector<const char*>(5000, "T=").data(), 5000));
}

TEST(ProcessesTest, ExitCode259CountsAsRunning) {
  ov_process process;
  ASSERT_EQ(0, ov_process_create(&process, "cmd.exe /c exit 259"));
  int32_t state = 9;
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_wait(&process, -1, &state));
  EXPECT_EQ(0, state);
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(0, state);
  EXPECT_EQ(9, code);
  CloseHandle(process.process);
  CloseHandle(process.thread);
}

TEST(ProcessesTest, SetEnvironment) {
  char out[16];
  EXPECT_EQ(0, ov_process_setenv("OV_SET_\xC3\xA4", "\xE2\x82\xAC"));
  EXPECT_EQ(0, ov_process_getenv("OV_SET_\xC3\xA4", out, sizeof out));
  EXPECT_STREQ("\xE2\x82\xAC", out);
  EXPECT_EQ(0, ov_process_setenv("OV_SET_\xC3\xA4", nullptr));
  EXPECT_EQ(22, ov_process_getenv("OV_SET_\xC3\xA4", out, sizeof out));
  EXPECT_EQ(122, ov_process_setenv(std::string(8192, 'x').c_str(), ""));
  EXPECT_EQ(22, ov_process_setenv(nullptr, ""));
}

TEST(ProcessesTest, SetEnvironmentUpToTheSystemsLimit) {
  const std::string longest(32766, 'x');
  ASSERT_EQ(0, ov_process_setenv("OV_LONG", longest.c_str()));
  std::string out(longest.size() + 1, '#');
  EXPECT_EQ(0, ov_process_getenv("OV_LONG", out.data(), out.size()));
  EXPECT_EQ(longest, out.c_str());
  EXPECT_EQ(122, ov_process_setenv("OV_LONG", (longest + "x").c_str()));
}

TEST(ProcessesTest, VariableThatDoesNotFitTheBuffer) {
  char out[4];
  ASSERT_EQ(0, ov_process_setenv("OV_FIT", "abcd"));
  EXPECT_EQ(28677, ov_process_getenv("OV_FIT", out, sizeof out));
  ASSERT_EQ(0, ov_process_setenv("OV_FIT", "\xE2\x82\xAC\xE2\x82\xAC"));  // two characters
  EXPECT_EQ(122, ov_process_getenv("OV_FIT", out, sizeof out));
}

}  // namespace
