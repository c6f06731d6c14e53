// The code of the call that has just failed.
#pragma once

#include <cerrno>

#include "runtime/errors/platform.h"
#include "runtime/ov_errors.h"

namespace ov {

// The system's last error or else errno; never 0, so that a failure cannot pass for a success. The
// calls on sockets tell theirs in the same place. To be called before anything else is.
inline ov_rc last_code() {
  if (const uint32_t error = last_error(); error != 0) return static_cast<ov_rc>(error);
  return errno != 0 ? errno : OV_EINVAL;
}

// 0 for a call that answers with the platform's BOOL and succeeded, else its code.
inline ov_rc code_of(int succeeded) {
  return succeeded != 0 ? 0 : last_code();
}

}  // namespace ov
