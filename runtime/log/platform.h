// What the log needs of the platform. Any thread may call it.
#pragma once

#include <cstdint>
#include <string_view>

#include "runtime/ov_types.h"

namespace ov {

uint32_t process_id();

// Writes to file descriptor 2, the bytes as they are; a failure is not told.
void write_standard_error(std::string_view text);

// Size of an open file, or the system's code. `file` is an ov_file.
ov_rc open_file_size(void* file, uint64_t* size);

// The one lock of the process's log; not recursive, needs no set-up and is never torn down, so that
// it serves before the first initialisation and while the library goes.
void acquire_log_lock();
bool try_acquire_log_lock();
void release_log_lock();

}  // namespace ov
