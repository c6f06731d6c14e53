// The exception logger in its own process: faults are raised and then caught by a handler behind
// it, so that the process goes on. Calls of the platform are replaced where they have to fail.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "runtime/faults/exception_codes.h"
#include "runtime/faults/exception_logger.h"
#include "runtime/log/lock.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/temp_folder.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

using Lines = std::vector<std::string>;
using ov::real_call;
using ov::TempFolder;

// What the replaced calls do, and what they have seen.
struct Platform {
  // Libraries asked for. One whose name ends so is not there.
  std::vector<std::string> libraries;
  std::string missingLibrary = "none";
  bool allLibrariesMissing = false;
  int loaded = 0, freed = 0;
  std::string missingSymbol;
  bool symbolLookUpFails = false;  // it raises a fault itself
  bool hasLocalFile = false;
  int programLength = -1;  // of the program's path, -1 for the real path
  DWORD major = 6, minor = 1;
  int secondRelease = 0;
  int framesAsked = 0, framesSkipped = 0;
  int handlersAdded = 0, handlersRemoved = 0;
  int faultsInWrite = 0;  // so many writes raise a fault first
  bool processEnds = false;
} platform;

std::atomic<int> faults_caught = 0;

void raise(uint32_t code) {
  RaiseException(code, 0, 0, nullptr);
}

std::string narrow(const wchar_t* text) {
  char out[OV_PATH_SIZE] = "";
  size_t bytes = sizeof out;
  ov_wchar_to_utf8(text, out, &bytes);
  return out;
}

HMODULE WINAPI testLoadLibraryW(LPCWSTR name) {
  static const auto load = real_call<decltype(&LoadLibraryW)>(L"kernel32.dll", "LoadLibraryW");
  platform.libraries.push_back(narrow(name));
  if (platform.allLibrariesMissing || platform.libraries.back() == platform.missingLibrary) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  const HMODULE module = load(name);
  if (module != nullptr) ++platform.loaded;
  return module;
}

BOOL WINAPI testFreeLibrary(HMODULE module) {
  static const auto free = real_call<decltype(&FreeLibrary)>(L"kernel32.dll", "FreeLibrary");
  ++platform.freed;
  return free(module);
}

// Stands for the look-up of a symbol.
BOOL WINAPI failingLookUp(HANDLE, DWORD64, DWORD64*, void*) {
  raise(0xc0000005);
  return FALSE;
}

BOOLEAN NTAPI testShutdownInProgress() {
  return platform.processEnds ? TRUE : FALSE;
}

FARPROC WINAPI testGetProcAddress(HMODULE module, LPCSTR name) {
  static const auto get = real_call<decltype(&GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
  if (platform.missingSymbol == name) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  if (platform.symbolLookUpFails && std::strcmp(name, "SymGetSymFromAddr64") == 0) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&failingLookUp));
  }
  if (std::strcmp(name, "RtlDllShutdownInProgress") == 0) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&testShutdownInProgress));
  }
  return get(module, name);
}

BOOL WINAPI testGetFileAttributesExW(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
  static const auto get =
      real_call<decltype(&GetFileAttributesExW)>(L"kernel32.dll", "GetFileAttributesExW");
  const bool local = narrow(path).ends_with(".local");
  return get(local && platform.hasLocalFile ? L"C:\\" : path, level, data);
}

BOOL WINAPI testGetVersionExW(LPOSVERSIONINFOW info) {
  EXPECT_EQ(0x114U, info->dwOSVersionInfoSize);
  info->dwMajorVersion = platform.major;
  info->dwMinorVersion = platform.minor;
  return TRUE;
}

int WINAPI testGetSystemMetrics(int index) {
  EXPECT_EQ(SM_SERVERR2, index);
  return platform.secondRelease;
}

USHORT WINAPI testCaptureStackBackTrace(ULONG skip, ULONG count, PVOID* frames, PULONG hash) {
  static const auto capture =
      real_call<decltype(&RtlCaptureStackBackTrace)>(L"ntdll.dll", "RtlCaptureStackBackTrace");
  platform.framesSkipped = static_cast<int>(skip);
  platform.framesAsked = static_cast<int>(count);
  return capture(skip, count, frames, hash);
}

PVOID WINAPI testAddHandler(ULONG first, PVECTORED_EXCEPTION_HANDLER handler) {
  static const auto add = real_call<decltype(&AddVectoredExceptionHandler)>(
      L"kernel32.dll", "AddVectoredExceptionHandler");
  // Ours is the last in the chain; the thread library's own is the first.
  if (first == 0) ++platform.handlersAdded;
  return add(first, handler);
}

ULONG WINAPI testRemoveHandler(PVOID handler) {
  static const auto remove = real_call<decltype(&RemoveVectoredExceptionHandler)>(
      L"kernel32.dll", "RemoveVectoredExceptionHandler");
  ++platform.handlersRemoved;
  return remove(handler);
}

BOOL WINAPI testWriteFile(HANDLE file, LPCVOID bytes, DWORD length, LPDWORD written,
                          LPOVERLAPPED overlapped) {
  static const auto write = real_call<decltype(&WriteFile)>(L"kernel32.dll", "WriteFile");
  if (platform.faultsInWrite > 0) {
    --platform.faultsInWrite;
    raise(0xc0000006);
  }
  return write(file, bytes, length, written, overlapped);
}

}  // namespace

// The linker takes this and the import pointers below instead of the import library's.
extern "C" DWORD WINAPI K32GetModuleFileNameExW(HANDLE process, HMODULE module, LPWSTR out,
                                                DWORD size);
extern "C" DWORD WINAPI K32GetModuleFileNameExW(HANDLE process, HMODULE module, LPWSTR out,
                                                DWORD size) {
  static const auto get =
      real_call<decltype(&K32GetModuleFileNameExW)>(L"kernel32.dll", "K32GetModuleFileNameExW");
  if (platform.programLength < 0) return get(process, module, out, size);
  if (platform.programLength == 0) return 0;
  const auto rest = static_cast<size_t>(platform.programLength) - 3;
  const std::wstring path = L"C:\\" + std::wstring(rest, L'x');
  path.copy(out, path.size());
  out[path.size()] = 0;
  return static_cast<DWORD>(path.size());
}

extern "C" {
decltype(&LoadLibraryW) __imp_LoadLibraryW = &testLoadLibraryW;
decltype(&FreeLibrary) __imp_FreeLibrary = &testFreeLibrary;
decltype(&GetProcAddress) __imp_GetProcAddress = &testGetProcAddress;
decltype(&GetFileAttributesExW) __imp_GetFileAttributesExW = &testGetFileAttributesExW;
decltype(&GetVersionExW) __imp_GetVersionExW = &testGetVersionExW;
decltype(&GetSystemMetrics) __imp_GetSystemMetrics = &testGetSystemMetrics;
decltype(&RtlCaptureStackBackTrace) __imp_RtlCaptureStackBackTrace = &testCaptureStackBackTrace;
decltype(&AddVectoredExceptionHandler) __imp_AddVectoredExceptionHandler = &testAddHandler;
decltype(&RemoveVectoredExceptionHandler) __imp_RemoveVectoredExceptionHandler = &testRemoveHandler;
decltype(&WriteFile) __imp_WriteFile = &testWriteFile;
}

namespace {

// Handles every fault, behind the exception logger if that was installed before.
class Catcher {
 public:
  Catcher()
      : handler_(real_call<decltype(&AddVectoredExceptionHandler)>(
            L"kernel32.dll", "AddVectoredExceptionHandler")(0, &handle)) {}
  ~Catcher() {
    real_call<decltype(&RemoveVectoredExceptionHandler)>(
        L"kernel32.dll", "RemoveVectoredExceptionHandler")(handler_);
  }
  Catcher(const Catcher&) = delete;
  Catcher& operator=(const Catcher&) = delete;

 private:
  static LONG CALLBACK handle(EXCEPTION_POINTERS*) {
    ++faults_caught;
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  void* handler_;
};

void setUp() {
  ov_log_cleanup();
  platform = {};
  faults_caught = 0;
}

class ExceptionLoggerTest : public testing::Test {
 protected:
  void SetUp() override { setUp(); }
  void TearDown() override { setUp(); }
};

std::string firstLine(const ov::ExceptionCode& row) {
  return std::string("ERR Unhandled Exception ") + row.name + "(" + std::to_string(row.code) + ")";
}

TEST_F(ExceptionLoggerTest, EachFaultIsToldWithItsNameAndTheSearchGoesOn) {
  ov::CapturedLog log;
  const Catcher catcher;
  int expected = 0;
  for (const ov::ExceptionCode& row : ov::kExceptionCodes) {
    raise(row.code);
    EXPECT_EQ(++expected, faults_caught) << row.name;
    const Lines lines = log.take();
    if (std::strcmp(row.name, "BREAKPOINT") == 0 || std::strcmp(row.name, "SINGLE_STEP") == 0) {
      EXPECT_EQ(Lines{}, lines);
      continue;
    }
    ASSERT_LE(3U, lines.size()) << row.name;
    EXPECT_EQ(firstLine(row), lines[0]);
    EXPECT_EQ(0U, lines[1].find("ERR Backtrace hash:0x")) << lines[1];
    EXPECT_EQ(0U, lines[2].find("ERR  0:0x")) << lines[2];
  }
}

TEST_F(ExceptionLoggerTest, OtherCodesAreNotTold) {
  ov::CapturedLog log;
  const Catcher catcher;
  for (const uint32_t code : {0x20474343U, 0xe06d7363U, 0x40010006U, 0xc0000097U, 0xc000008bU}) {
    raise(code);
  }
  EXPECT_EQ(5, faults_caught);
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(ExceptionLoggerTest, ThrownObjectIsNotTold) {
  ov::CapturedLog log;
  EXPECT_THROW(throw 1, int);
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(ExceptionLoggerTest, CallersErrorsAreTheSameBehindTheReport) {
  const ov::CapturedLog log;
  const Catcher catcher;
  SetLastError(77);
  errno = 5;
  raise(0xc0000005);
  EXPECT_EQ(77U, GetLastError());
  EXPECT_EQ(5, errno);
}

[[gnu::noinline]] void deep(int depth, void (*what)()) {
  volatile int more = depth;
  if (more > 0) {
    deep(more - 1, what);
  } else {
    what();
  }
  more = 0;
}

// The lines of frames of a fault and of a backtrace on request, both below 200 calls.
struct Frames {
  size_t fault, called;
};

Frames countFrames() {
  ov::CapturedLog log;
  const Catcher catcher;
  deep(200, [] { raise(0xc0000005); });
  const size_t fault = log.take().size() - 2;
  EXPECT_EQ(2, platform.framesSkipped);
  deep(200, &ov_log_btrace);
  EXPECT_EQ(2, platform.framesSkipped);
  return {fault, log.take().size() - 1};
}

TEST_F(ExceptionLoggerTest, FaultTakes64FramesAndARequest66) {
  const Frames frames = countFrames();
  EXPECT_EQ(64U, frames.fault);
  EXPECT_EQ(66U, frames.called);
}

TEST_F(ExceptionLoggerTest, Version51Takes60FramesForBoth) {
  platform.major = 5;
  const Frames frames = countFrames();
  EXPECT_EQ(60U, frames.fault);
  EXPECT_EQ(60U, frames.called);
}

TEST_F(ExceptionLoggerTest, Version52TakesFewerInItsFirstReleaseOnly) {
  platform.major = 5;
  platform.minor = 2;
  EXPECT_EQ(60U, countFrames().called);
  platform.secondRelease = 1;
  const Frames frames = countFrames();
  EXPECT_EQ(64U, frames.fault);
  EXPECT_EQ(66U, frames.called);
}

TEST_F(ExceptionLoggerTest, BacktraceBeginsWithItsCaller) {
  ov::CapturedLog log;
  deep(0, [] {
    ov_log_btrace();
    errno = 0;  // so that the call is no jump
  });
  const Lines lines = log.take();
  ASSERT_LE(3U, lines.size());
  EXPECT_EQ(std::string::npos, lines[1].find("ov_log_btrace")) << lines[1];
  EXPECT_NE(std::string::npos, lines[2].find("deep")) << lines[2];
}

TEST_F(ExceptionLoggerTest, BacktraceBeforeAnyLogGoesNowhere) {
  ov_log_btrace();
  ov::CapturedLog log;
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(ExceptionLoggerTest, FaultsOfManyThreadsAreAllTold) {
  ov::CapturedLog log;
  const Catcher catcher;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back([] { raise(0xc0000094); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(8, faults_caught);
  const Lines lines = log.take();
  EXPECT_EQ(8, std::count(lines.begin(), lines.end(),
                          "ERR Unhandled Exception INT_DIVIDE_BY_ZERO(3221225620)"));
}

TEST_F(ExceptionLoggerTest, IsInstalledOnceAndRemovedWithTheLog) {
  for (int round = 0; round < 50; ++round) {
    if (round % 2 == 0) {
      EXPECT_EQ(0, ov_log_init_function([](const char*) {}));
      EXPECT_EQ(0, ov_log_init_function([](const char*) {}));
    } else {
      EXPECT_EQ(0, ov_log_init(2, "-"));
      EXPECT_EQ(0, ov_log_init(2, "-"));
    }
    EXPECT_EQ(round + 1, platform.handlersAdded);
    ov_log_cleanup();
    ov_log_cleanup();
    EXPECT_EQ(round + 1, platform.handlersRemoved);
  }
  EXPECT_EQ(50, platform.loaded);
  EXPECT_EQ(50, platform.freed);
}

// The frames of a report, none of which has a name.
void expectNoNames(const Lines& lines, size_t first) {
  ASSERT_LT(first, lines.size());
  for (size_t i = first; i < lines.size(); ++i) {
    EXPECT_EQ(28U, lines[i].size()) << lines[i];
    EXPECT_TRUE(lines[i].ends_with(" +0")) << lines[i];
  }
}

// The debugging library was loaded after us, so its own end has been already.
TEST_F(ExceptionLoggerTest, AtTheEndOfTheProcessOnlyTheHandlerGoes) {
  EXPECT_EQ(0, ov_log_init_function([](const char*) {}));
  platform.processEnds = true;
  ov_log_cleanup();
  EXPECT_EQ(1, platform.handlersRemoved);
  EXPECT_EQ(0, platform.freed);
}

TEST_F(ExceptionLoggerTest, FaultAtTheEndOfTheProcessIsToldWithoutNames) {
  platform.symbolLookUpFails = true;
  ov::CapturedLog log;
  const Catcher catcher;
  platform.processEnds = true;
  raise(0xc0000005);
  EXPECT_EQ(1, faults_caught);
  const Lines lines = log.take();
  ASSERT_LE(3U, lines.size());
  expectNoNames(lines, 2);
  platform.processEnds = false;
}

TEST_F(ExceptionLoggerTest, LogThatIsNotSetUpInstallsNothing) {
  EXPECT_EQ(OV_ERANGE, ov_log_init_function(nullptr));
  EXPECT_EQ(OV_EINVAL, ov_log_init(3, "-"));
  EXPECT_EQ(OV_EINVAL, ov_log_init(2, nullptr));
  EXPECT_EQ(OV_EPATHMAX, (ov_log_cleanup(), ov_log_init(2, std::string(521, 'x').c_str())));
  EXPECT_EQ(0, platform.handlersAdded);
}

TEST_F(ExceptionLoggerTest, LogWhoseFileDoesNotOpenInstallsAllTheSame) {
  testing::internal::CaptureStderr();
  EXPECT_NE(0, ov_log_init(2, "C:/no such directory/app.log"));
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(1, platform.handlersAdded);
}

TEST_F(ExceptionLoggerTest, LibraryIsLookedForAmongTheToolsFirst) {
  SetEnvironmentVariableW(L"ProgramFiles", L"C:\\no programs");
  const ov::CapturedLog log;
  EXPECT_EQ((Lines{R"(\\?\C:\no programs\Debugging Tools for Windows\dbghelp.dll)",
                   R"(\\?\C:\no programs\Debugging Tools for Windows 64-bit\dbghelp.dll)",
                   "dbghelp.dll"}),
            platform.libraries);
  EXPECT_EQ(0, ov::symbol_failure().error);
  EXPECT_STREQ("", ov::symbol_failure().text);
}

TEST_F(ExceptionLoggerTest, WithoutAFolderOfProgramsOnlyTheSystemsIsLookedFor) {
  SetEnvironmentVariableW(L"ProgramFiles", nullptr);
  const ov::CapturedLog log;
  EXPECT_EQ(Lines{"dbghelp.dll"}, platform.libraries);
}

TEST_F(ExceptionLoggerTest, LocalFileKeepsTheProgramToItsOwn) {
  platform.hasLocalFile = true;
  const ov::CapturedLog log;
  EXPECT_EQ(Lines{"dbghelp.dll"}, platform.libraries);
}

TEST_F(ExceptionLoggerTest, FirstLibraryThatOpensIsTaken) {
  const TempFolder folder;
  const std::string tools = folder.path("Debugging Tools for Windows 64-bit");
  std::filesystem::create_directory(TempFolder::native(tools));
  std::filesystem::copy_file(L"C:\\windows\\system32\\dbghelp.dll",
                             TempFolder::native(tools + "/dbghelp.dll"));
  SetEnvironmentVariableW(L"ProgramFiles", TempFolder::native(folder.path()).c_str());
  {
    const ov::CapturedLog log;
    ASSERT_EQ(2U, platform.libraries.size());
    EXPECT_TRUE(platform.libraries[1].ends_with("64-bit\\dbghelp.dll"));
  }
  EXPECT_EQ(1, platform.loaded);
  EXPECT_EQ(1, platform.freed);
}

TEST_F(ExceptionLoggerTest, WithoutALibraryFaultsAreToldWithoutNames) {
  platform.allLibrariesMissing = true;
  ov::CapturedLog log;
  EXPECT_EQ(183, ov::symbol_failure().error);
  EXPECT_STREQ("Could not load dbghelp.dll", ov::symbol_failure().text);
  EXPECT_EQ(Lines{}, log.take());
  const Catcher catcher;
  raise(0xc000001d);
  EXPECT_EQ(1, faults_caught);
  const Lines lines = log.take();
  ASSERT_LE(3U, lines.size());
  EXPECT_EQ("ERR Unhandled Exception ILLEGAL_INSTRUCTION(3221225501)", lines[0]);
  expectNoNames(lines, 2);
  ov_log_btrace();
  expectNoNames(log.take(), 1);
}

TEST_F(ExceptionLoggerTest, LibraryThatLacksOneOfTheCallsIsClosed) {
  int rounds = 0;
  for (const char* name : {"SymInitialize", "SymFunctionTableAccess64", "SymGetModuleBase64",
                           "UnDecorateSymbolName", "SymGetSymFromAddr64"}) {
    platform.missingSymbol = name;
    ov::CapturedLog log;
    EXPECT_STREQ("Could not load symbols from dbghelp.dll", ov::symbol_failure().text) << name;
    EXPECT_EQ(Lines{std::string("ERR Loading lib symbol [") + name + "] failed"}, log.take());
    EXPECT_EQ(++rounds, platform.freed);
    const Catcher catcher;
    raise(0xc0000005);
    expectNoNames(log.take(), 2);
  }
  EXPECT_EQ(rounds, platform.loaded);
  EXPECT_EQ(rounds, faults_caught);
}

TEST_F(ExceptionLoggerTest, LibraryWithoutACleanUpIsClosedAllTheSame) {
  platform.missingSymbol = "SymCleanup";
  { const ov::CapturedLog log; }
  EXPECT_EQ(1, platform.loaded);
  EXPECT_EQ(1, platform.freed);
}

TEST_F(ExceptionLoggerTest, LibraryWithoutOptionsServesAllTheSame) {
  platform.missingSymbol = "SymSetOptions";
  ov::CapturedLog log;
  deep(0, [] {
    ov_log_btrace();
    errno = 0;
  });
  EXPECT_NE(std::string::npos, log.take().at(2).find("deep"));
}

TEST_F(ExceptionLoggerTest, ProgramWithoutAPath) {
  platform.programLength = 0;
  ov::CapturedLog log;
  EXPECT_EQ(Lines{"ERR ovbtrace: Error finding executable path."}, log.take());
  EXPECT_EQ(OV_EINTERNAL1, ov::symbol_failure().error);
  EXPECT_EQ(Lines{}, platform.libraries);
}

TEST_F(ExceptionLoggerTest, ProgramWithAPathThatHasNoRoomForMore) {
  platform.programLength = 516;
  ov::CapturedLog log;
  EXPECT_EQ(OV_EINTERNAL1, ov::symbol_failure().error);
  EXPECT_STREQ("Error appending paths.", ov::symbol_failure().text);
  EXPECT_EQ(Lines{}, platform.libraries);
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(ExceptionLoggerTest, FaultInTheSymbolLookUpIsToldWithoutNames) {
  platform.symbolLookUpFails = true;
  ov::CapturedLog log;
  const Catcher catcher;
  ov_log_btrace();
  const Lines lines = log.take();
  const auto faults = std::count(lines.begin(), lines.end(),
                                 "ERR Unhandled Exception ACCESS_VIOLATION(3221225477)");
  EXPECT_EQ(faults_caught, faults);
  EXPECT_LT(0, faults);
  for (const std::string& line : lines) {
    if (line.find("hash") != std::string::npos || line.find("Unhandled") != std::string::npos) {
      continue;
    }
    EXPECT_TRUE(line.ends_with(" +0")) << line;
  }
}

// A stack that has run out has no room for the debugging library.
TEST_F(ExceptionLoggerTest, NoNameIsLookedUpForAStackOverflow) {
  platform.symbolLookUpFails = true;
  ov::CapturedLog log;
  const Catcher catcher;
  raise(0xc00000fd);
  EXPECT_EQ(1, faults_caught);
  const Lines lines = log.take();
  ASSERT_LE(3U, lines.size());
  EXPECT_EQ("ERR Unhandled Exception STACK_OVERFLOW(3221225725)", lines[0]);
  expectNoNames(lines, 2);
}

class FileLogFaultTest : public ExceptionLoggerTest {
 protected:
  void SetUp() override {
    ExceptionLoggerTest::SetUp();
    ASSERT_EQ(0, ov_log_init(2, folder_.path("app.log").c_str()));
  }
  size_t count(const std::string& text) const {
    const std::string log = TempFolder::read(folder_.path("app.log"));
    size_t found = 0;
    for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++found;
    return found;
  }
  TempFolder folder_;
};

TEST_F(FileLogFaultTest, FaultInsideTheLogIsToldFromThere) {
  const Catcher catcher;
  platform.faultsInWrite = 1;
  ov_log("interrupted");
  EXPECT_EQ(1, faults_caught);
  EXPECT_EQ(1U, count("ERR Unhandled Exception IN_PAGE_ERROR(3221225478)\r\n"));
  EXPECT_EQ(1U, count("ERR Backtrace hash:"));
  EXPECT_EQ(1U, count("LOG interrupted\r\n"));
  ov_log("next");
  EXPECT_EQ(1U, count("LOG next\r\n"));
}

TEST_F(FileLogFaultTest, FaultInsideItsOwnReportIsPassedOn) {
  const Catcher catcher;
  platform.faultsInWrite = 5;
  ov_log("interrupted");
  EXPECT_EQ(5, faults_caught);
  EXPECT_EQ(1U, count("ERR Unhandled Exception"));
  EXPECT_EQ(1U, count("LOG interrupted\r\n"));
}

TEST_F(FileLogFaultTest, LogHeldByAnotherThreadDoesNotHoldTheFault) {
  const Catcher catcher;
  std::atomic<bool> held = false;
  std::atomic<bool> go = false;
  std::thread holder([&] {
    const ov::LogLock lock;
    held = true;
    while (!go) Sleep(1);
  });
  while (!held) Sleep(1);
  raise(0xc0000005);
  EXPECT_EQ(1, faults_caught);
  go = true;
  holder.join();
  EXPECT_EQ(0U, count("Unhandled Exception"));
  raise(0xc0000005);
  EXPECT_EQ(1U, count("Unhandled Exception"));
}

TEST_F(FileLogFaultTest, ReportedLinesAreNeitherFoldedNorRotated) {
  const Catcher catcher;
  for (int i = 0; i < 3; ++i) raise(0xc0000005);
  EXPECT_EQ(3U, count("ERR Unhandled Exception ACCESS_VIOLATION(3221225477)\r\n"));
  EXPECT_EQ(0U, count("repeated"));
}

}  // namespace
