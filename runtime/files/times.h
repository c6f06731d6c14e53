// Times of files as the platform keeps them. Not part of the public header.
#pragma once

#include <cstdint>

namespace ov {

// Converts seconds since 1970 into units of 100 ns since 1601; false for a time that has no such
// number, or the number 0, which stands for no time.
bool filetime_of(int64_t seconds, uint64_t* filetime);

}  // namespace ov
