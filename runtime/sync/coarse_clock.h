// The clock of bounded waits and of the log's stamps. Any thread.
#pragma once

#include <cstdint>

namespace ov {

// Milliseconds of a clock that advances, in steps of its own, together with the time of day, and
// costs next to nothing to read. Needs no set-up.
uint64_t coarse_milliseconds();

}  // namespace ov
