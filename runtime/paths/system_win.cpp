// Paths that the system tells: the program, the present directory.
#define PSAPI_VERSION 2  // the functions of kernel32, with no further library
#include <windows.h>
#include <psapi.h>

#include <direct.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/internal.h"

int32_t ov_path_executable_path(char* out, size_t size) {
  wchar_t wide[OV_PATH_SIZE];
  const DWORD length = GetModuleFileNameExW(GetCurrentProcess(), nullptr, wide, OV_PATH_SIZE);
  if (length == 0 || length >= OV_PATH_SIZE) return ov::no_path(out, size);
  char text[OV_PATH_SIZE];
  size_t bytes = sizeof text;
  if (ov_wchar_to_utf8(wide, text, &bytes) != 0) return ov::no_path(out, size);
  return ov::length_or_failure(ov_path_canonical_path(text, out, size), out);
}

ov_rc ov_path_getcwd(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  wchar_t wide[OV_PATH_SIZE];
  errno = 0;
  if (_wgetcwd(wide, OV_PATH_SIZE) == nullptr) return errno != 0 ? errno : ov::last_code();
  return ov_wchar_to_utf8(wide, out, &size);
}
