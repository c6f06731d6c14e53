// What is found out about a text by whole blocks, with no look at sequences.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/strings/utf_blocks.h"

namespace ov {

// Number of bytes at the start, of at most `max`, that are ASCII and not the terminator. Text with
// a terminator may pass any `max`.
size_t utf8_ascii_run(const uint8_t* text, size_t max);

// Bytes before the terminator, at most `max`; of a text without one, `max` bytes can be read.
size_t text_length(const uint8_t* text, size_t max = SIZE_MAX);
// Units before the terminator.
size_t text_length(const Utf16Unit* text);

}  // namespace ov
