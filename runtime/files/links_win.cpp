// Symbolic links, and the long names of a path.
#include <windows.h>
#include <winioctl.h>

#include <cwchar>

#include "runtime/errors/last_code.h"
#include "runtime/files/handle.h"
#include "runtime/files/reparse_target.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

namespace {

static_assert(sizeof(wchar_t) == sizeof(uint16_t));
static_assert(kReparseSize == MAXIMUM_REPARSE_DATA_BUFFER_SIZE);
static_assert(OV_ENOTALINK == ERROR_NOT_A_REPARSE_POINT &&
              OV_EILLLINK == ERROR_INVALID_REPARSE_DATA);

// Lets users make links who have no such right but develop; older systems do not know it.
constexpr DWORD kUnprivileged = 2;

// What a link's text leads to from where the link is: a text that is relative counts from there.
bool leads_to_directory(const char* target, const char* link) {
  if (!ov_path_is_relative(target)) return ov_path_is_dir(target) != 0;
  char above[OV_PATH_SIZE];
  char whole[OV_PATH_SIZE];
  if (ov_str_ncpy(above, link, sizeof above) != 0) return false;
  ov_file_tounixpath(above);
  ov_file_dirname(above);
  return ov_file_append_path(above, target, whole, sizeof whole) == 0 && ov_path_is_dir(whole) != 0;
}

constexpr wchar_t kLongNetwork[] = LR"(\\?\UNC\)";
constexpr wchar_t kLong[] = LR"(\\?\)";

// Steps over the mark of a long path, which only system calls are to see.
wchar_t* without_mark(wchar_t* path) {
  constexpr size_t kNetworkLength = sizeof kLongNetwork / sizeof(wchar_t) - 1;
  constexpr size_t kLength = sizeof kLong / sizeof(wchar_t) - 1;
  if (wcsncmp(path, kLongNetwork, kNetworkLength) == 0) {
    wchar_t* const rest = path + kNetworkLength - 2;
    rest[0] = L'\\';
    return rest;
  }
  return wcsncmp(path, kLong, kLength) == 0 ? path + kLength : path;
}

}  // namespace

ov_rc ov_file_symlink(const char* target, const char* link) {
  if (target == nullptr) return OV_EINVAL;
  const WidePath wide(link);
  if (wide.error != 0) return wide.error;
  wchar_t text[OV_PATH_SIZE];
  size_t bytes = sizeof text;
  if (const ov_rc error = ov_utf8_to_wchar(target, text, &bytes)) return error;
  // The text stays in the link, where only backslashes are understood.
  for (wchar_t* at = text; *at != 0; ++at) {
    if (*at == L'/') *at = L'\\';
  }
  const DWORD kind = leads_to_directory(target, link) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
  if (CreateSymbolicLinkW(wide.text, text, kind | kUnprivileged)) return 0;
  if (GetLastError() != ERROR_INVALID_PARAMETER) return last_code();
  return code_of(CreateSymbolicLinkW(wide.text, text, kind));
}

ov_rc ov_file_readlink(const char* path, char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  const FileHandle link(CreateFileW(
      wide.text, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!link) return last_code();
  alignas(8) uint8_t record[kReparseSize];
  DWORD length = 0;
  if (!DeviceIoControl(link.get(), FSCTL_GET_REPARSE_POINT, nullptr, 0, record, sizeof record,
                       &length, nullptr)) {
    return last_code();
  }
  wchar_t target[OV_PATH_SIZE];
  ov_rc error = reparse_target(record, length, reinterpret_cast<uint16_t*>(target), OV_PATH_SIZE);
  if (error == 0) error = ov_wchar_to_utf8(target, out, &size);
  if (error == 0) ov_file_tounixpath(out);
  return error;
}

ov_rc ov_file_realpath(const char* path, char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  wchar_t found[OV_PATH_SIZE];
  const DWORD length = GetLongPathNameW(wide.text, found, OV_PATH_SIZE);
  if (length == 0) return last_code();
  if (length >= OV_PATH_SIZE) return OV_ERANGE;
  const ov_rc error = ov_wchar_to_utf8(without_mark(found), out, &size);
  if (error == 0) ov_file_tounixpath(out);
  return error;
}
