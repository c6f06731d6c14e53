// The log over platform calls that fail.
#include <gtest/gtest.h>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "tests/support/runtime/temp_folder.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

using ov::TempFolder;

// The platform calls fail with this error, or work when it is negative.
int write_error = -1;
int size_error = -1;
int link_error = -1;
int link_calls = 0;
// The most bytes that one write takes.
DWORD write_limit = MAXDWORD;
int write_calls = 0;

bool fails(int error) {
  if (error < 0) return false;
  SetLastError(static_cast<DWORD>(error));
  return true;
}

template <typename Function>
Function real(const char* name) {
  return ov::real_call<Function>(L"kernel32.dll", name);
}

BOOL WINAPI testWriteFile(HANDLE file, LPCVOID bytes, DWORD length, LPDWORD written,
                          LPOVERLAPPED overlapped) {
  ++write_calls;
  if (fails(write_error)) return FALSE;
  static const auto write = real<decltype(&WriteFile)>("WriteFile");
  return write(file, bytes, std::min(length, write_limit), written, overlapped);
}

BOOL WINAPI testGetFileSizeEx(HANDLE file, PLARGE_INTEGER size) {
  if (fails(size_error)) return FALSE;
  static const auto get = real<decltype(&GetFileSizeEx)>("GetFileSizeEx");
  return get(file, size);
}

// Names that are found before those that are there.
std::vector<std::wstring> more_names;

// A directory of Wine's is one of the machine's, which holds no name of more than 255 bytes.
BOOL WINAPI testFindNextFileW(HANDLE directory, LPWIN32_FIND_DATAW data) {
  static const auto next = real<decltype(&FindNextFileW)>("FindNextFileW");
  if (more_names.empty()) return next(directory, data);
  *data = {};
  more_names.back().copy(data->cFileName, MAX_PATH - 1);
  more_names.pop_back();
  return TRUE;
}

BOOL WINAPI testCreateHardLinkW(LPCWSTR link, LPCWSTR existing, LPSECURITY_ATTRIBUTES security) {
  ++link_calls;
  if (fails(link_error)) return FALSE;
  static const auto create = real<decltype(&CreateHardLinkW)>("CreateHardLinkW");
  return create(link, existing, security);
}

}  // namespace

// The linker takes these import pointers instead of the import library's.
extern "C" {
decltype(&WriteFile) __imp_WriteFile = &testWriteFile;
decltype(&GetFileSizeEx) __imp_GetFileSizeEx = &testGetFileSizeEx;
decltype(&CreateHardLinkW) __imp_CreateHardLinkW = &testCreateHardLinkW;
decltype(&FindNextFileW) __imp_FindNextFileW = &testFindNextFileW;
}

namespace {

class LogFailureTest : public testing::Test {
 protected:
  void SetUp() override {
    reset();
    ov_log_cleanup();
    ov_log_set_logfile_size(10);
  }
  void TearDown() override {
    reset();
    ov_log_cleanup();
  }

  static void reset() {
    write_error = size_error = link_error = -1;
    write_limit = MAXDWORD;
    write_calls = link_calls = 0;
    more_names.clear();
  }

  std::string open() {
    const std::string path = folder_.path("app.log");
    EXPECT_EQ(0, ov_log_init(2, path.c_str()));
    return folder_.path("app.0.log");
  }

  TempFolder folder_;
};

TEST_F(LogFailureTest, FailedWriteLosesItsLineAndTheCountOfRepeatsOnly) {
  const std::string file = open();
  ov_log("one");
  ov_log("one");
  write_error = ERROR_DISK_FULL;
  SetLastError(77);
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_LOG, "two"));
  EXPECT_EQ(77u, GetLastError());
  write_error = -1;
  ov_log("three");
  const std::string text = TempFolder::read(file);
  EXPECT_NE(std::string::npos, text.find("LOG one\r\n"));
  EXPECT_EQ(std::string::npos, text.find("two"));
  EXPECT_NE(std::string::npos, text.find("LOG three\r\n"));
  EXPECT_EQ(std::string::npos, text.find("repeated"));
}

TEST_F(LogFailureTest, LineLeavesInOneWriteAndAShortWriteIsContinued) {
  const std::string file = open();
  write_calls = 0;
  ov_log("whole");
  EXPECT_EQ(1, write_calls);
  write_limit = 7;
  ov_log("in pieces");
  EXPECT_LT(2, write_calls);
  EXPECT_TRUE(TempFolder::read(file).ends_with("LOG in pieces\r\n"));
}

TEST_F(LogFailureTest, WriteThatTakesNothingEnds) {
  const std::string file = open();
  write_limit = 0;
  ov_log("nothing");
  write_limit = MAXDWORD;
  ov_log("more");
  EXPECT_TRUE(TempFolder::read(file).ends_with("LOG more\r\n"));
}

// Writes past the interval at which the size is looked at.
void fill() {
  const std::string filler(4000, 'x');
  for (int i = 0; i < 20; ++i) ov_log("%d %s", i, filler.c_str());
}

TEST_F(LogFailureTest, SizeThatCannotBeReadLeavesTheGeneration) {
  const std::string file = open();
  ov_log_set_logfile_size(0);
  size_error = ERROR_GEN_FAILURE;
  fill();
  ov_log("still here");
  EXPECT_TRUE(TempFolder::read(file).ends_with("LOG still here\r\n"));
  EXPECT_FALSE(std::filesystem::exists(TempFolder::native(folder_.path("app.1.log"))));
}

TEST_F(LogFailureTest, NamesThatCannotBeToldDoNotHideTheGenerationsBehindThem) {
  for (const char* name : {"app.3.log", "app.4.log"}) TempFolder::write(folder_.path(name), "");
  more_names = {L"\xd800", std::wstring(255, L'\x4e00')};
  open();
  EXPECT_EQ(0U, more_names.size());
  ov_log("text");
  EXPECT_TRUE(TempFolder::read(folder_.path("app.4.log")).ends_with("LOG text\r\n"));
}

// What a test reads back has lost the carriage returns of whole line ends.
TEST_F(LogFailureTest, LineEndsOfStandardErrorAreWholeInTextMode) {
  const std::string file = folder_.path("stderr.txt");
  const int saved = _dup(2);
  const int target =
      _wopen(TempFolder::native(file).c_str(), _O_CREAT | _O_WRONLY | _O_TEXT, _S_IWRITE);
  ASSERT_LE(0, target);
  _dup2(target, 2);
  _close(target);
  EXPECT_EQ(0, ov_log_init(2, "-"));
  ov_log("one");
  ov_log_cleanup();
  const std::string missing = folder_.path("none");
  EXPECT_NE(0, ov_log_init(2, (missing + "/app.log").c_str()));
  _dup2(saved, 2);
  _close(saved);
  EXPECT_EQ("LOG one\r\nError opening log directory " + missing + "\r\n", TempFolder::read(file));
}

TEST_F(LogFailureTest, MissingHardLinkDoesNotStopTheLog) {
  link_error = ERROR_NOT_SUPPORTED;
  const std::string file = open();
  EXPECT_EQ(1, link_calls);
  ov_log("text");
  EXPECT_TRUE(TempFolder::read(file).ends_with("LOG text\r\n"));
  EXPECT_FALSE(std::filesystem::exists(TempFolder::native(folder_.path("app.log"))));
}

}  // namespace
