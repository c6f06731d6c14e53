// What the base runtime needs of the platform's errors. Any thread may call it.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "runtime/ov_errors.h"

namespace ov {

// The calling thread's last error of the system.
uint32_t last_error();
void set_last_error(uint32_t error);

// The code to return for a call that has just failed: the last error or else errno; never 0.
inline ov_rc system_error() {
  if (const uint32_t error = last_error(); error != 0) return static_cast<ov_rc>(error);
  return errno != 0 ? errno : OV_EINVAL;
}

// Writes the system's message for `code` as UTF-8, line end included. The system's code when it has
// none, 122 when it does not fit.
ov_rc system_message(int32_t code, char* buffer, size_t size);

}  // namespace ov
