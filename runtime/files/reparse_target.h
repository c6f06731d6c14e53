// What a link of the file system leads to, read from its record. Not part of the public header.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// The most that the platform lets a record have, in bytes.
constexpr size_t kReparseSize = 16384;

// Writes the target of a symbolic link or a mount point, in UTF-16 and terminated: the name that
// people are to see, or else the system's own without its mark. `size` counts units. 0; 4390 for a
// record of another kind, 4392 for one whose parts do not lie in it, 122 for a target too long.
ov_rc reparse_target(const uint8_t* record, size_t length, uint16_t* out, size_t size);

}  // namespace ov
