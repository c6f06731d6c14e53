// Reading directories, and the making of one.
#include <windows.h>

#include <cstring>
#include <cwchar>

#include <new>

#include "runtime/errors/last_code.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

static_assert(sizeof(ov_find_data) == sizeof(WIN32_FIND_DATAW));
static_assert(alignof(ov_find_data) == alignof(WIN32_FIND_DATAW));

namespace {

// The longest path, in characters, that has room for the two that the search adds.
constexpr size_t kLongestSearch = 518;

// The platform's record inside the caller's one; both are plain data of one size.
WIN32_FIND_DATAW* find_data(ov_dir* dir) {
  return std::launder(reinterpret_cast<WIN32_FIND_DATAW*>(&dir->data));
}

bool is_directory(const wchar_t* path) {
  const DWORD attributes = GetFileAttributesW(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

ov_rc ov_dir_open(const char* path, ov_dir* dir) {
  if (path == nullptr || dir == nullptr) return OV_EINVAL;
  *dir = {};
  dir->handle = kClosedHandle;
  dir->state = kReadNext;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  size_t length = wcslen(wide.text);
  if (length > kLongestSearch) return OV_ERANGE;
  wchar_t search[kLongestSearch + 3];
  wmemcpy(search, wide.text, length);
  if (length == 0 || search[length - 1] != L'\\') search[length++] = L'\\';
  search[length] = L'*';
  search[length + 1] = L'\0';
  dir->handle = FindFirstFileW(search, find_data(dir));
  if (dir->handle != kClosedHandle) {
    dir->state = kFirstPending;
    return 0;
  }
  const ov_rc error = last_code();
  if (error != OV_ENOENT) return error;
  // The empty root of a volume holds not even a "." to be found.
  search[length] = L'\0';
  if (!is_directory(search)) return OV_ENOENT;
  dir->state = kEmptyDirectory;
  return 0;
}

ov_rc ov_dir_next(ov_dir* dir, ov_dirent* entry) {
  if (dir == nullptr || entry == nullptr) return OV_EINVAL;
  entry->find = nullptr;
  if (dir->state == kEmptyDirectory) return OV_EDIREND;
  if (dir->state == kFirstPending) {
    dir->state = kReadNext;
  } else if (!FindNextFileW(dir->handle, find_data(dir))) {
    const ov_rc error = last_code();
    if (error == ERROR_INVALID_PARAMETER) {
      ov_log(
          "WARNING: FindNextFile returned ERROR_INVALID_PARAMETER. Assuming ERROR_NO_MORE_FILES.");
    }
    const bool end = error == ERROR_NO_MORE_FILES || error == ERROR_INVALID_PARAMETER;
    return end ? OV_EDIREND : error;
  }
  entry->find = &dir->data;
  size_t bytes = sizeof entry->name;
  return ov_wchar_to_utf8(find_data(dir)->cFileName, entry->name, &bytes);
}

ov_rc ov_dir_close(ov_dir* dir) {
  if (dir == nullptr) return OV_EINVAL;
  if (dir->handle != kClosedHandle) FindClose(dir->handle);
  dir->handle = kClosedHandle;
  return 0;
}

ov_rc ov::remove_directory(const char* path) {
  const WidePath wide(path);
  return wide.error != 0 ? wide.error : code_of(RemoveDirectoryW(wide.text));
}

ov_rc ov::make_directory(const char* path) {
  const WidePath wide(path);
  return wide.error != 0 ? wide.error : code_of(CreateDirectoryW(wide.text, nullptr));
}
