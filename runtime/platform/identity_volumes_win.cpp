// Drives and the space on them.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/paths/wide_path_win.h"
#include "runtime/platform/identity_platform.h"

static_assert(sizeof(wchar_t) == sizeof(uint16_t));

ov_rc ov::drive_roots(uint16_t* out, size_t units) {
  const auto size = static_cast<DWORD>(units);
  const DWORD length = GetLogicalDriveStringsW(size, reinterpret_cast<wchar_t*>(out));
  if (length == 0) return last_code();
  return length >= size ? OV_EBUFFER : 0;
}

ov_rc ov::volume_space(const char* path, uint64_t* total, uint64_t* free) {
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  ULARGE_INTEGER whole = {};
  ULARGE_INTEGER unused = {};
  const ov_rc error = code_of(GetDiskFreeSpaceExW(wide.text, nullptr, &whole, &unused));
  *total = whole.QuadPart;
  *free = unused.QuadPart;
  return error;
}
