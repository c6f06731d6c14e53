// The part of UTF-8 text that needs no look at sequences.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

// Number of bytes at the start, of at most `max`, that are ASCII and not the terminator. Text with
// a terminator may pass any `max`.
size_t utf8_ascii_run(const uint8_t* text, size_t max);

}  // namespace ov
