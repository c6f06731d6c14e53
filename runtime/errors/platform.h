// What the base runtime needs of the platform's errors, and the mark of a handle that there is not.
// Any thread may call it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// The value of a handle that is closed: all ones.
inline void* const kClosedHandle = reinterpret_cast<void*>(~uintptr_t{0});

// The calling thread's last error of the system.
uint32_t last_error();
void set_last_error(uint32_t error);

// Writes the system's message for `code` as UTF-8, line end included. The system's code when it has
// none, 122 when it does not fit.
ov_rc system_message(int32_t code, char* buffer, size_t size);

}  // namespace ov
