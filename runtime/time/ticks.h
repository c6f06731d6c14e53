// From ticks of a monotonic counter to microseconds. Plain values.
#pragma once

#include <cstdint>

namespace ov {

// Microseconds are ticks * usec_multiplier / tick_multiplier.
struct TickScale {
  uint64_t tickMultiplier = 0;
  uint64_t usecMultiplier = 0;
};

// A divisor above this is shortened, together with the multiplier.
constexpr uint64_t kTickMultiplierLimit = 0x400000;

constexpr TickScale tick_scale(uint64_t frequency) {
  TickScale scale{frequency, 1000000};
  while (scale.tickMultiplier > kTickMultiplierLimit) {
    scale.tickMultiplier >>= 2;
    scale.usecMultiplier >>= 2;
  }
  return scale;
}

// The product of all ticks and the multiplier would overflow after some months, so whole units of
// the divisor go first; what remains stays below 2^42.
constexpr uint64_t ticks_to_usec(uint64_t ticks, const TickScale& scale) {
  const uint64_t whole = ticks / scale.tickMultiplier;
  const uint64_t rest = ticks % scale.tickMultiplier;
  return whole * scale.usecMultiplier + rest * scale.usecMultiplier / scale.tickMultiplier;
}

}  // namespace ov
