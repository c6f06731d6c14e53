// Domains that were looked up, with their short names. Not part of the public header.
#pragma once

#include <cstddef>

#include "runtime/ov_types.h"

namespace ov {

// Of a domain's or a user's name, with the terminator.
constexpr size_t kNameSize = 512;
constexpr size_t kRememberedDomains = 20;

// Writes the short name of a domain, which has less than kNameSize bytes and is not empty. A new
// one is asked of the platform and takes the place of the one used longest ago; 2 if the platform
// does not know it.
ov_rc remembered_domain_name(const char* domain, char* out, size_t size);

}  // namespace ov
