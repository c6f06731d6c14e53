// Well-formedness, lengths and conversion of UTF-8 and UTF-16 text in blocks of 16 bytes. What is
// converted has been found good before, so that the conversion tests nothing again. Every text has
// its terminator behind the length told.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

// A unit of UTF-16, whatever type the caller's text has.
using Utf16Unit [[gnu::may_alias]] = uint16_t;

struct UtfMeasure {
  bool good;  // well-formed
  size_t
      count;  // units or bytes of the other form, without terminator; nothing for ill-formed text
};

// Whether this processor has the shuffles that utf8_measure needs.
bool utf8_can_measure();
// Tests the text, without a branch for each sequence. Surrogates are let through if allowed.
UtfMeasure utf8_measure(const uint8_t* text, size_t length, bool surrogates_allowed);
// Writes exactly `units` units.
void utf8_convert(const uint8_t* text, size_t length, Utf16Unit* dst, size_t units);

// Tests the text. Lone surrogates are let through if allowed.
UtfMeasure utf16_measure(const Utf16Unit* text, size_t length, bool surrogates_allowed);
// Writes exactly `bytes` bytes.
void utf16_convert(const Utf16Unit* text, size_t length, uint8_t* dst, size_t bytes);

}  // namespace ov
