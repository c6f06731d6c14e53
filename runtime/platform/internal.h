// What the sources of the platform family share. Not part of the public header.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// Of a domain's or a user's name, with the terminator.
constexpr size_t kNameSize = 512;
constexpr size_t kRememberedDomains = 20;

// Writes the short name of a domain, which has less than kNameSize bytes and is not empty. A new
// one is asked of the platform and takes the place of the one used longest ago; 2 if the platform
// does not know it.
ov_rc remembered_domain_name(const char* domain, char* out, size_t size);

// Looks for the user, without regard to case, in the file of lines "NAME:PASSWORD:NUMBER:...".
// 28687 if no line has the name and a number; then, as after any failure, `*uid` is -1.
ov_rc find_uid(const char* path, const char* user, int32_t* uid);

}  // namespace ov
