// Torture for the runtime: makes the n-th fallible call of the platform fail that a piece of work
// makes. To be included by one source of a test program, which links the runtime statically: the
// import pointers defined here take the place of the import library's.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "tests/support/runtime/real_call_win.h"

namespace ov::torture {

// What is under way. Only calls of the thread that began it count.
struct Failure {
  DWORD thread = 0;              // 0 while nothing is
  int left = 0;                  // calls up to the one that fails
  const char* failed = nullptr;  // the name of the call that did
};
inline Failure failure;

// Whether this call is the one to fail.
inline bool fails(const char* name) {
  if (failure.thread == 0 || failure.thread != GetCurrentThreadId()) return false;
  if (--failure.left != 0) return false;
  failure.failed = name;
  return true;
}

// Runs the work with its n-th call failing. The name of the call that failed, null if there were
// fewer than n.
template <typename Work>
const char* with_failing_call(int n, Work work) {
  failure = {GetCurrentThreadId(), n, nullptr};
  work();
  failure.thread = 0;
  return failure.failed;
}

// For a scope, what the test itself does within the work does not count.
class Pause {
 public:
  Pause() : thread_(failure.thread) { failure.thread = 0; }
  ~Pause() { failure.thread = thread_; }
  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;

 private:
  const DWORD thread_;
};

// One call of the platform: `Call` tells its name, its module, and how it fails.
template <typename Function, typename Call>
struct Replaced;
template <typename Result, typename... Arguments, typename Call>
struct Replaced<Result (*)(Arguments...), Call> {
  using Function = Result (*)(Arguments...);
  static inline std::atomic<Function> real = nullptr;
  static Result call(Arguments... arguments) {
    if (fails(Call::kName)) return static_cast<Result>(Call::fail());
    // No guarded static: the thread library makes such calls in the midst of its own guards.
    Function function = real.load();
    if (function == nullptr) real.store(function = real_call<Function>(Call::kModule, Call::kName));
    return function(arguments...);
  }
};

}  // namespace ov::torture

// Replaces a call of a module; `result` is what a failure gives, with `error` as the last error.
#define OV_FAILING(module_name, function, result, error)                              \
  namespace ov::torture {                                                             \
  struct function##Call {                                                             \
    static constexpr const char* kName = #function;                                   \
    static constexpr const wchar_t* kModule = module_name;                            \
    static decltype(auto) fail() {                                                    \
      SetLastError(error);                                                            \
      return result;                                                                  \
    }                                                                                 \
  };                                                                                  \
  }                                                                                   \
  extern "C" {                                                                        \
  decltype(&function) __imp_##function =                                              \
      &ov::torture::Replaced<decltype(&function), ov::torture::function##Call>::call; \
  }

#define OV_FAILING_HANDLE(function, error) \
  OV_FAILING(L"kernel32.dll", function, INVALID_HANDLE_VALUE, error)
#define OV_FAILING_OBJECT(function, error) \
  OV_FAILING(L"kernel32.dll", function, static_cast<HANDLE>(nullptr), error)
#define OV_FAILING_TEST(function, error) OV_FAILING(L"kernel32.dll", function, FALSE, error)
#define OV_FAILING_CODE(function, error) \
  OV_FAILING(L"advapi32.dll", function, static_cast<LSTATUS>(error), 0)

// Closing calls are not here: one that fails keeps what it was to close.
OV_FAILING_HANDLE(CreateFileW, ERROR_ACCESS_DENIED)
OV_FAILING_HANDLE(FindFirstFileW, ERROR_ACCESS_DENIED)
OV_FAILING_HANDLE(FindFirstFileExW, ERROR_ACCESS_DENIED)
OV_FAILING_OBJECT(CreateMutexW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_OBJECT(CreateSemaphoreW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_OBJECT(CreateEventW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_OBJECT(CreateThread, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING(L"kernel32.dll", ResumeThread, ~DWORD{0}, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(FindNextFileW, ERROR_GEN_FAILURE)
OV_FAILING_TEST(ReadFile, ERROR_READ_FAULT)
OV_FAILING_TEST(WriteFile, ERROR_DISK_FULL)
OV_FAILING_TEST(SetFilePointerEx, ERROR_SEEK)
OV_FAILING_TEST(SetEndOfFile, ERROR_DISK_FULL)
OV_FAILING_TEST(GetFileSizeEx, ERROR_GEN_FAILURE)
OV_FAILING_TEST(GetFileInformationByHandle, ERROR_GEN_FAILURE)
OV_FAILING_TEST(GetFileAttributesExW, ERROR_ACCESS_DENIED)
OV_FAILING(L"kernel32.dll", GetFileAttributesW, INVALID_FILE_ATTRIBUTES, ERROR_ACCESS_DENIED)
OV_FAILING(L"kernel32.dll", GetLongPathNameW, 0, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(CreateDirectoryW, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(RemoveDirectoryW, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(DeleteFileW, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(MoveFileExW, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(CreateHardLinkW, ERROR_TOO_MANY_LINKS)
OV_FAILING_TEST(CreateProcessW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_TEST(GetExitCodeProcess, ERROR_INVALID_HANDLE)
OV_FAILING_TEST(TerminateProcess, ERROR_ACCESS_DENIED)
OV_FAILING_TEST(SetEnvironmentVariableW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING(L"kernel32.dll", GetEnvironmentVariableW, 0, ERROR_ENVVAR_NOT_FOUND)
OV_FAILING(L"kernel32.dll", LoadLibraryW, static_cast<HMODULE>(nullptr), ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING(L"kernel32.dll", GetProcAddress, static_cast<FARPROC>(nullptr), ERROR_PROC_NOT_FOUND)
OV_FAILING(L"kernel32.dll", WaitForSingleObject, WAIT_FAILED, ERROR_INVALID_HANDLE)
OV_FAILING(L"kernel32.dll", AddVectoredExceptionHandler, nullptr, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_TEST(GetVersionExW, ERROR_INVALID_PARAMETER)
OV_FAILING_TEST(ReleaseSemaphore, ERROR_TOO_MANY_POSTS)
OV_FAILING_CODE(RegCreateKeyExW, ERROR_ACCESS_DENIED)
OV_FAILING_CODE(RegOpenKeyExW, ERROR_ACCESS_DENIED)
OV_FAILING_CODE(RegSetValueExW, ERROR_NOT_ENOUGH_MEMORY)
OV_FAILING_CODE(RegQueryValueExW, ERROR_ACCESS_DENIED)
OV_FAILING_CODE(RegDeleteValueW, ERROR_ACCESS_DENIED)

namespace ov::torture {
// What works does not reach the disk, which can take seconds for as many as there are here.
inline BOOL WINAPI flush(HANDLE) {
  if (!fails("FlushFileBuffers")) return TRUE;
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}

// Handles that were closed once too often. The next owner of such a number would lose his handle.
inline std::atomic<int> bad_closes = 0;

inline BOOL WINAPI close_handle(HANDLE handle) {
  const auto close = real_call<decltype(&CloseHandle)>(L"kernel32.dll", "CloseHandle");
  const BOOL closed = close(handle);
  if (!closed) ++bad_closes;
  return closed;
}
}  // namespace ov::torture

extern "C" {
decltype(&FlushFileBuffers) __imp_FlushFileBuffers = &ov::torture::flush;
decltype(&CloseHandle) __imp_CloseHandle = &ov::torture::close_handle;
}

// Memory that the runtime asks for without an exception.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return ov::torture::fails("operator new") ? nullptr : std::malloc(size);
}
