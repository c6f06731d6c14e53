// The code of the call that just failed.
#pragma once

#include <errno.h>
#include <windows.h>

#include "runtime/ov_types.h"

namespace ov {

// The system's last error, or errno when there is none. To be called before anything else is.
inline ov_rc last_code() {
  const DWORD code = GetLastError();
  return code != 0 ? static_cast<ov_rc>(code) : static_cast<ov_rc>(errno);
}

// 0 for a call that succeeded, else its code.
inline ov_rc code_of(BOOL succeeded) {
  return succeeded ? 0 : last_code();
}

}  // namespace ov
