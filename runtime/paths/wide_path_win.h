// A path in the form that wide system calls take.
#pragma once

#include <windows.h>

#include "runtime/errors/quiet_drives_win.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"

namespace ov {

// Converts in the constructor; `error` is not 0 when that failed. While it lives, a drive of the
// path that has no disk is a failure and no box.
struct WidePath {
  explicit WidePath(const char* path) {
    size_t bytes = sizeof text;
    error = path == nullptr ? OV_EINVAL : ov_path_widen_path(path, text, &bytes);
  }
  wchar_t text[OV_PATH_SIZE];
  ov_rc error;
  const QuietDrives quiet;
};

}  // namespace ov
