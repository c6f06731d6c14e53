// The environment of a process that is started with one of its own. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// In 16-bit units; the two last bytes are for the terminator of the whole.
constexpr size_t kEnvironmentBlockUnits = 32768 / sizeof(uint16_t);

// Writes the entries, sorted by byte value and each terminated, and one terminator more. The first
// entry is "SystemRoot=" with `systemRoot`, cut at 501 bytes; of `entries` the first 4094 count. 8
// when they do not fit, are not UTF-8, or memory is short.
ov_rc build_environment_block(const char* systemRoot, const char* const* entries, int32_t count,
                              uint16_t (&block)[kEnvironmentBlockUnits]);

}  // namespace ov
