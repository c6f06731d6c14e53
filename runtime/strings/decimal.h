// The one reader of plain decimal digits: no sign, no white space, no other base.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/strings/ascii.h"

namespace ov {

struct Decimal {
  uint64_t value = 0;  // the greatest one for a number beyond it
  size_t digits = 0;   // how many there were
};

// Reads the digits at the start of a text, which ends at the first byte that is none.
constexpr Decimal read_decimal(const char* text) {
  Decimal number;
  for (; is_digit(text[number.digits]); ++number.digits) {
    const auto digit = static_cast<uint64_t>(text[number.digits] - '0');
    const bool fits = number.value <= (UINT64_MAX - digit) / 10;
    number.value = fits ? number.value * 10 + digit : UINT64_MAX;
  }
  return number;
}

}  // namespace ov
