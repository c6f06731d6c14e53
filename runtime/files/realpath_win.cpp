// The long names of a path.
#include <windows.h>

#include <cwchar>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

namespace {

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
