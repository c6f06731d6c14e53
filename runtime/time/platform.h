// What the clock and the calendar need of the platform. Any thread may call it; codes are those of
// the system, 0 for success.
#pragma once

#include <cstdint>
#include <ctime>

#include "runtime/ov_types.h"

namespace ov {

// The monotonic counter and how often it counts in a second.
ov_rc read_tick_frequency(uint64_t* frequency);
ov_rc read_ticks(uint64_t* ticks);

// 22 for a time that the calendar does not cover (before 1970, far in the future).
ov_rc break_down_utc(int64_t time, std::tm* tm);
ov_rc break_down_local(int64_t time, std::tm* tm);

// -1 when there is no such time.
int64_t compose_utc(std::tm* tm);
int64_t compose_local(std::tm* tm);

}  // namespace ov
