// What the log needs of the platform. Any thread may call it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

uint32_t process_id();
uint32_t thread_id();

// The one lock of the process's log; not recursive, needs no set-up and is never torn down, so that
// it serves before the first initialisation and while the library goes.
void acquire_log_lock();
void release_log_lock();

}  // namespace ov
