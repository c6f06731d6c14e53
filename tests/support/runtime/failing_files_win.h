// Failures of files and directories that do not happen by themselves: imports are replaced by
// functions of ours. For the one source of a test program, as it defines them.
#pragma once

#include <windows.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cwchar>
#include <string>
#include <vector>

#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/real_call_win.h"
#include "tests/support/runtime/temp_folder.h"

namespace ov {
namespace FailingFiles {

struct Faults {
  DWORD read = 0;
  int readFailures = 0;
  DWORD setEnd = 0;
  DWORD findFirst = 0;
  DWORD findNext = 0;
  DWORD fileInformation = 0;
  DWORD fileType = FILE_TYPE_UNKNOWN;
  bool mountPoint = false;
  std::wstring longName;  // found instead of the entry "long"
  // Somebody makes a directory or a file where ours was to be, just before we do.
  enum class Race { kNone, kDirectory, kFile } race = Race::kNone;
  std::wstring link;        // shown as a link
  DWORD linkTag = 0;        // its kind; 0 if the system does not tell
  std::wstring followed;    // what is opened in place of the link, unless the link itself is
  std::wstring linkTarget;  // where its content is when the link is removed
  int linksRemoved = 0;
  DWORD write = 0;        // the code of a failing write
  DWORD writeAtMost = 0;  // bytes, if not 0
  bool writeNothing = false;
  std::vector<DWORD> slept;
};
inline Faults faults;

template <typename Function>
Function real(const char* name) {
  return real_call<Function>(L"kernel32.dll", name);
}

inline BOOL WINAPI readFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD read,
                            LPOVERLAPPED o) {
  if (faults.readFailures > 0) {
    --faults.readFailures;
    SetLastError(faults.read);
    return FALSE;
  }
  return real<decltype(&ReadFile)>("ReadFile")(file, buffer, length, read, o);
}

inline void WINAPI sleepFor(DWORD milliseconds) {
  faults.slept.push_back(milliseconds);
}

inline BOOL WINAPI setEndOfFile(HANDLE file) {
  if (faults.setEnd == 0) return real<decltype(&SetEndOfFile)>("SetEndOfFile")(file);
  SetLastError(faults.setEnd);
  return FALSE;
}

inline HANDLE WINAPI findFirstFile(LPCWSTR path, LPWIN32_FIND_DATAW data) {
  if (faults.findFirst == 0) return real<decltype(&FindFirstFileW)>("FindFirstFileW")(path, data);
  SetLastError(faults.findFirst);
  return INVALID_HANDLE_VALUE;
}

inline BOOL WINAPI findNextFile(HANDLE handle, LPWIN32_FIND_DATAW data) {
  if (faults.findNext != 0) {
    SetLastError(faults.findNext);
    return FALSE;
  }
  const BOOL found = real<decltype(&FindNextFileW)>("FindNextFileW")(handle, data);
  // Wine's host has no names of more than 255 bytes.
  if (found != FALSE && !faults.longName.empty() && std::wstring(data->cFileName) == L"long") {
    wcscpy(data->cFileName, faults.longName.c_str());
  }
  return found;
}

inline bool isLink(LPCWSTR path) {
  const std::wstring text = path;
  return !faults.link.empty() && text.ends_with(faults.link);
}

inline HANDLE WINAPI findFirstFileEx(LPCWSTR path, FINDEX_INFO_LEVELS level, LPVOID data,
                                     FINDEX_SEARCH_OPS search, LPVOID filter, DWORD flags) {
  const HANDLE found = real<decltype(&FindFirstFileExW)>("FindFirstFileExW")(path, level, data,
                                                                             search, filter, flags);
  if (faults.mountPoint) {
    static_cast<WIN32_FIND_DATAW*>(data)->dwReserved0 = IO_REPARSE_TAG_MOUNT_POINT;
  }
  if (isLink(path)) static_cast<WIN32_FIND_DATAW*>(data)->dwReserved0 = faults.linkTag;
  return found;
}

inline BOOL WINAPI getFileAttributesEx(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
  const BOOL good =
      real<decltype(&GetFileAttributesExW)>("GetFileAttributesExW")(path, level, data);
  if (good && faults.mountPoint) {
    auto* const attributes = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data);
    attributes->dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    attributes->ftCreationTime = {};  // before 1970: the library's status is not asked
  }
  if (good && isLink(path)) {
    static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data)->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  }
  return good;
}

inline HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share,
                                LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                HANDLE model) {
  const bool follow = isLink(path) && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0;
  const bool away = follow && !faults.followed.empty();
  return real<decltype(&CreateFileW)>("CreateFileW")(away ? faults.followed.c_str() : path, access,
                                                     share, security, disposition, flags, model);
}

// As msvcrt does on Windows: a path with "?" is none. Wine's takes it.
inline int wideStatus(const wchar_t* path, struct _stat64* status) {
  if (wcschr(path, L'?') == nullptr) {
    return real_call<int (*)(const wchar_t*, struct _stat64*)>(L"msvcrt.dll", "_wstat64")(path,
                                                                                          status);
  }
  errno = ENOENT;
  return -1;
}

inline BOOL WINAPI writeFile(HANDLE file, LPCVOID data, DWORD length, LPDWORD written,
                             LPOVERLAPPED o) {
  if (faults.write != 0) {
    SetLastError(faults.write);
    return FALSE;
  }
  if (faults.writeAtMost != 0 && length > faults.writeAtMost) length = faults.writeAtMost;
  if (faults.writeNothing) length = 0;
  return real<decltype(&WriteFile)>("WriteFile")(file, data, length, written, o);
}

inline BOOL WINAPI createDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
  const auto create = real<decltype(&CreateDirectoryW)>("CreateDirectoryW");
  if (faults.race == Faults::Race::kDirectory) create(path, security);
  if (faults.race == Faults::Race::kFile) {
    CloseHandle(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  }
  return create(path, security);
}

inline DWORD WINAPI getFileAttributes(LPCWSTR path) {
  const DWORD attributes = real<decltype(&GetFileAttributesW)>("GetFileAttributesW")(path);
  return isLink(path) ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
}

// Takes a link away and leaves what it leads to.
inline BOOL WINAPI removeDirectory(LPCWSTR path) {
  if (!isLink(path)) return real<decltype(&RemoveDirectoryW)>("RemoveDirectoryW")(path);
  ++faults.linksRemoved;
  return MoveFileW(path, faults.linkTarget.c_str());
}

inline BOOL WINAPI fileInformation(HANDLE file, LPBY_HANDLE_FILE_INFORMATION data) {
  if (faults.fileInformation == 0) {
    return real<decltype(&GetFileInformationByHandle)>("GetFileInformationByHandle")(file, data);
  }
  SetLastError(faults.fileInformation);
  return FALSE;
}

inline DWORD WINAPI fileType(HANDLE) {
  return faults.fileType;
}

}  // namespace FailingFiles
}  // namespace ov

extern "C" {
decltype(&ReadFile) __imp_ReadFile = ov::FailingFiles::readFile;
decltype(&Sleep) __imp_Sleep = ov::FailingFiles::sleepFor;
decltype(&SetEndOfFile) __imp_SetEndOfFile = ov::FailingFiles::setEndOfFile;
decltype(&FindFirstFileW) __imp_FindFirstFileW = ov::FailingFiles::findFirstFile;
decltype(&FindNextFileW) __imp_FindNextFileW = ov::FailingFiles::findNextFile;
decltype(&FindFirstFileExW) __imp_FindFirstFileExW = ov::FailingFiles::findFirstFileEx;
decltype(&GetFileAttributesExW) __imp_GetFileAttributesExW = ov::FailingFiles::getFileAttributesEx;
decltype(&WriteFile) __imp_WriteFile = ov::FailingFiles::writeFile;
decltype(&CreateFileW) __imp_CreateFileW = ov::FailingFiles::createFile;
decltype(&ov::FailingFiles::wideStatus) __imp__wstat64 = ov::FailingFiles::wideStatus;
decltype(&CreateDirectoryW) __imp_CreateDirectoryW = ov::FailingFiles::createDirectory;
decltype(&GetFileAttributesW) __imp_GetFileAttributesW = ov::FailingFiles::getFileAttributes;
decltype(&RemoveDirectoryW) __imp_RemoveDirectoryW = ov::FailingFiles::removeDirectory;
decltype(&GetFileInformationByHandle) __imp_GetFileInformationByHandle =
    ov::FailingFiles::fileInformation;
decltype(&GetFileType) __imp_GetFileType = ov::FailingFiles::fileType;
}

namespace ov {

// A folder with a file in it, and nothing fails before a test says so.
class FailingFilesTest : public ::testing::Test {
 protected:
  FailingFilesTest() : path_(folder_.path("file")) {
    faults = {};
    TempFolder::write(path_, "content");
  }
  ~FailingFilesTest() override { faults = {}; }

  FailingFiles::Faults& faults = FailingFiles::faults;
  const TempFolder folder_;
  const std::string path_;
  CapturedLog log_;
};

}  // namespace ov
