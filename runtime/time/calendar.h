// Formatting that the calendar adds to the standard library's. Plain values.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

// "+0130" and a terminator.
constexpr size_t kUtcOffsetRoom = 16;

// Writes an offset in seconds: "+" if it is above 0, else "-" (so UTC is "-0000"), hours, minutes.
void format_utc_offset(int64_t seconds, char (&text)[kUtcOffsetRoom]);

}  // namespace ov
