// The variables of this process and the end of another, by the system's own calls.
#include <windows.h>

#include <gtest/gtest.h>

#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"

namespace {

TEST(EnvironmentTest, Variables) {
  char out[16];
  SetEnvironmentVariableW(L"OV_TEST_\u00E4", L"v\u00E4lue");
  EXPECT_EQ(0, ov_process_getenv("OV_TEST_\xC3\xA4", out, sizeof out));
  EXPECT_STREQ("v\xC3\xA4lue", out);
  EXPECT_EQ(28677, ov_process_getenv("OV_TEST_\xC3\xA4", out, 5));
  EXPECT_EQ(122, ov_process_getenv("OV_TEST_\xC3\xA4", out, 6));  // six characters, seven bytes
  EXPECT_EQ(0, ov_process_getenv("OV_TEST_\xC3\xA4", out, 7));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", out, sizeof out));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", nullptr, 1));
  EXPECT_EQ(22, ov_process_getenv("OV_TEST_NONE", out, 0));
}

TEST(EnvironmentTest, NullNameIsCountedWhenAssertionsAreOff) {
  const int32_t before = g_ov_asserts_skipped;
  char out[4];
  EXPECT_EQ(22, ov_process_getenv(nullptr, out, sizeof out));
  EXPECT_EQ(before, g_ov_asserts_skipped);
  g_ov_asserts_active = 0;
  EXPECT_EQ(22, ov_process_getenv(nullptr, out, sizeof out));
  g_ov_asserts_active = 1;
  EXPECT_EQ(before + 1, g_ov_asserts_skipped);
}

TEST(ProcessTest, ExitIsSeenOnce) {
  wchar_t command[] = L"cmd.exe /c exit 7";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started;
  ASSERT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                             nullptr, &startup, &started));
  ov_process process = {};
  process.process = started.hProcess;
  process.thread = started.hThread;
  process.user_token = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  int32_t state = 9;
  int32_t code = 9;
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(0, state);
  EXPECT_EQ(9, code);
  ResumeThread(started.hThread);
  WaitForSingleObject(started.hProcess, INFINITE);
  EXPECT_EQ(0, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(1, state);
  EXPECT_EQ(7, code);
  EXPECT_EQ(nullptr, process.process);
  EXPECT_EQ(nullptr, process.thread);
  EXPECT_EQ(INVALID_HANDLE_VALUE, process.user_token);
  EXPECT_EQ(6, ov_process_exited(&process, &state, &code));
  EXPECT_EQ(22, ov_process_exited(nullptr, &state, &code));
  EXPECT_EQ(22, ov_process_exited(&process, nullptr, &code));
  EXPECT_EQ(22, ov_process_exited(&process, &state, nullptr));
}

}  // namespace
