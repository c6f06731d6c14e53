// What a look-up of a host's name needs beside the system. Not part of the public header.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// Room for a host's name with its terminator; a longer host is not taken out of its text.
constexpr size_t kHostSize = 255;

// Takes "[address]:port" or "host:port" apart: copies the host and returns the port, which is the
// rest of `text`. Null when the whole text is the host (two colons without brackets are an IPv6
// address); then `host` stays.
const char* split_port(const char* text, char (&host)[kHostSize]);

// The code to return for a look-up that gave `result` and left `last_error`; never 0.
ov_rc lookup_code(int32_t result, int32_t last_error);

}  // namespace ov
