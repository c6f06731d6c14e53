// The rules of one UTF-8 sequence and of surrogates, by which all the UTF functions go.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

// Length that the first byte tells; 5 and 6 are told too but never well-formed, and a continuation
// byte counts as a sequence of its own.
constexpr size_t utf8_sequence_length(uint8_t first) {
  if (first < 0xc0) return 1;
  if (first < 0xe0) return 2;
  if (first < 0xf0) return 3;
  if (first < 0xf8) return 4;
  return first < 0xfc ? 5 : 6;
}

constexpr bool is_utf8_continuation(uint8_t byte) {
  return (byte & 0xc0) == 0x80;
}

// Whether `second` may follow `first`, which keeps out overlong forms, surrogates (unless they are
// allowed) and what lies beyond the last code point.
constexpr bool is_utf8_second_byte(uint8_t first, uint8_t second, bool surrogates_allowed) {
  if (!is_utf8_continuation(second)) return false;
  switch (first) {
    case 0xe0:
      return second >= 0xa0;
    case 0xed:
      return surrogates_allowed || second <= 0x9f;
    case 0xf0:
      return second >= 0x90;
    case 0xf4:
      return second <= 0x8f;
    default:
      return true;
  }
}

// Number of bytes before the first one at fault in the sequence at `text`, of which at most
// `available` bytes are read; the sequence's length if it is well-formed. A terminator inside the
// sequence is at fault, so that text with one may pass any `available`.
constexpr size_t utf8_good_bytes(const uint8_t* text, size_t available, bool surrogates_allowed) {
  const uint8_t first = text[0];
  if (first > 0xf4 || (first >= 0x80 && first <= 0xc1)) return 0;
  const size_t length = utf8_sequence_length(first);
  for (size_t i = 1; i < length; ++i) {
    if (i == available) return i;
    const bool good = i == 1 ? is_utf8_second_byte(first, text[1], surrogates_allowed)
                             : is_utf8_continuation(text[i]);
    if (!good) return i;
  }
  return length;
}

constexpr uint32_t kLastCodePoint = 0x10ffff;
constexpr uint32_t kFirstSupplementary = 0x10000;

constexpr bool is_surrogate(uint32_t value) {
  return value >= 0xd800 && value <= 0xdfff;
}
constexpr bool is_high_surrogate(uint32_t value) {
  return value >= 0xd800 && value <= 0xdbff;
}
constexpr bool is_low_surrogate(uint32_t value) {
  return value >= 0xdc00 && value <= 0xdfff;
}

constexpr uint32_t high_surrogate(uint32_t code_point) {
  return 0xd800 + ((code_point - kFirstSupplementary) >> 10);
}
constexpr uint32_t low_surrogate(uint32_t code_point) {
  return 0xdc00 + (code_point & 0x3ff);
}
constexpr uint32_t code_point_of_pair(uint32_t high, uint32_t low) {
  return kFirstSupplementary + ((high & 0x3ff) << 10) + (low & 0x3ff);
}

}  // namespace ov
