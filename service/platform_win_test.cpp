// The platform calls of the service client, for real.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "runtime/ov_threads.h"
#include "service/locations.h"
#include "service/platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/service_files.h"
#include "threads/system_exception.h"

namespace {

HRESULT folderResult = S_OK;

// What the import library would link in the place of the shell's function.
HRESULT WINAPI fakeGetFolderPath(HWND, int folder, HANDLE, DWORD, LPWSTR path) {
  if (folderResult >= 0 && folder == 28) lstrcpyW(path, L"C:\\users\\J\u00f6rg\\Local");
  return folderResult;
}

BOOL foregroundResult = TRUE;
DWORD foregroundProcess = 0;

BOOL WINAPI fakeAllowForeground(DWORD processId) {
  foregroundProcess = processId;
  if (!foregroundResult) SetLastError(ERROR_ACCESS_DENIED);
  return foregroundResult;
}

}  // namespace

extern "C" {
decltype(&fakeGetFolderPath) __imp_SHGetFolderPathW = fakeGetFolderPath;
decltype(&fakeAllowForeground) __imp_AllowSetForegroundWindow = fakeAllowForeground;
}

namespace Vantrel::Web {
namespace {

TEST(AppDataWinTest, IsTheLocalFolderInUtf8) {
  TestSupport::resetServiceCaches();
  TestSupport::LogRecorder log;
  EXPECT_EQ(pluginAppDataDir(), "C:\\users\\J\xc3\xb6rg\\Local");
  EXPECT_EQ(log.text(), "LOG Application data directory: C:\\users\\J\xc3\xb6rg\\Local\n");
}

TEST(AppDataWinTest, FailureIsReportedAsASignedDecimal) {
  TestSupport::resetServiceCaches();
  folderResult = static_cast<HRESULT>(0x80070003U);
  TestSupport::LogRecorder log;
  EXPECT_THROW(pluginAppDataDir(), SystemException);
  EXPECT_EQ(log.text(), "ERR Failed to determine application data directory (-2147024893)\n");
}

TEST(AllowForegroundWinTest, HandsTheProcessOnAndTellsTheCode) {
  EXPECT_EQ(allowForeground(4711), 0);
  EXPECT_EQ(foregroundProcess, 4711U);
  foregroundResult = FALSE;
  EXPECT_EQ(allowForeground(1), ERROR_ACCESS_DENIED);
}

// Starts copies of a small program that writes its command text beside itself and exits with 7.
class StartedProcessWinTest : public testing::Test {
 protected:
  StartedProcessWinTest() { std::filesystem::create_directories(directory_); }
  ~StartedProcessWinTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }

  std::string install() {
    const std::string path = directory_ + "/start probe.exe";
    std::filesystem::copy_file(std::filesystem::path(START_PROBE_NAME), path);
    return path;
  }

  static int32_t waitForExit(StartedProcess& process) {
    int32_t state = 0;
    int32_t exitCode = -1;
    while (ov_process_exited(&process.record, &state, &exitCode) == 0 && state == 0) {
      ov_thread_sleep(1);
    }
    EXPECT_EQ(state, 1);
    return exitCode;
  }

  const std::string root_ = TestSupport::makeTemporaryDirectory();
  const std::string directory_ = root_ + "/with blanks";
};

TEST_F(StartedProcessWinTest, CommandTextIsThePathAloneAndUnquoted) {
  const std::string path = install();
  {
    StartedProcess process;
    ASSERT_EQ(process.start(path), 0);
    EXPECT_NE(process.record.process_id, 0U);
    EXPECT_EQ(waitForExit(process), 7);
    EXPECT_EQ(process.record.process, nullptr);
  }
  std::ifstream file(path + ".txt", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), path);
}

TEST_F(StartedProcessWinTest, NoOtherProgramOnTheWayIsStarted) {
  // "with.exe" is what the platform would try first for an unquoted command text.
  const std::string path = install();
  std::filesystem::copy_file(std::filesystem::path(START_PROBE_NAME), root_ + "/with.exe");
  StartedProcess process;
  ASSERT_EQ(process.start(path), 0);
  EXPECT_EQ(waitForExit(process), 7);
  EXPECT_TRUE(std::filesystem::exists(path + ".txt"));
  EXPECT_FALSE(std::filesystem::exists(root_ + "/with.exe.txt"));
}

TEST_F(StartedProcessWinTest, RecordIsClosedWhileTheProcessRunsOn) {
  const std::string path = install();
  std::ofstream(path + ".wait").put('1');
  HANDLE observed = nullptr;
  {
    StartedProcess process;
    ASSERT_EQ(process.start(path), 0);
    int32_t state = -1;
    int32_t exitCode = 0;
    EXPECT_EQ(ov_process_exited(&process.record, &state, &exitCode), 0);
    EXPECT_EQ(state, 0);
    observed =
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, process.record.process_id);
  }
  ASSERT_NE(observed, nullptr);
  std::filesystem::remove(path + ".wait");
  EXPECT_EQ(WaitForSingleObject(observed, 30000), WAIT_OBJECT_0);
  DWORD exitCode = 0;
  GetExitCodeProcess(observed, &exitCode);
  EXPECT_EQ(exitCode, 7U);
  CloseHandle(observed);
}

TEST_F(StartedProcessWinTest, MissingFileIsTheCodeTwo) {
  StartedProcess process;
  EXPECT_EQ(process.start(directory_ + "/missing.exe"), ERROR_FILE_NOT_FOUND);
}

TEST_F(StartedProcessWinTest, FileThatIsNoProgramIsABadFormat) {
  const std::string path = directory_ + "/text.exe";
  std::ofstream(path) << "no program";
  StartedProcess process;
  EXPECT_EQ(process.start(path), ERROR_BAD_EXE_FORMAT);
}

TEST_F(StartedProcessWinTest, PathThatIsNoTextIsRefused) {
  StartedProcess process;
  EXPECT_NE(process.start("C:/\xc0\x80.exe"), 0);
}

TEST_F(StartedProcessWinTest, PathBeyondTheCommandTextIsRefused) {
  StartedProcess process;
  EXPECT_NE(process.start("C:/" + std::string(4096, 'x')), 0);
}

}  // namespace
}  // namespace Vantrel::Web
