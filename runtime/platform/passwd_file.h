// The file that tells users' numbers. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// Looks for the user, without regard to case, in the file of lines "NAME:PASSWORD:NUMBER:...".
// 28687 if no line has the name and a number; then, as after any failure, `*uid` is -1.
ov_rc find_uid(const char* path, const char* user, int32_t* uid);

}  // namespace ov
