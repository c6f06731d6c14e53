// What the identity of the process needs of the platform. Not part of the public header. Any thread
// may call it; a program of tests may replace all of it by its own (fake_identity.h).
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/ov_platform.h"

namespace ov {

// Of this computer's name, with the terminator.
constexpr size_t kHostNameSize = 520;

// Names: this computer's, and a domain's short one. Error codes of the system.
ov_rc computer_name(char* out, size_t size);
ov_rc flat_domain_name(const char* domain, char* out, size_t size);

// Volumes: the roots of all drives in UTF-16, each terminated, and one terminator more; 28677 when
// they do not fit `units`. The bytes of the volume that holds `path`.
ov_rc drive_roots(uint16_t* out, size_t units);
ov_rc volume_space(const char* path, uint64_t* total, uint64_t* free);

// The system.
struct SystemVersion {
  uint32_t major, minor;
  char service_pack[512];
};
ov_rc system_version(SystemVersion* version);

// The name of the program's locale.
ov_rc locale_name(char* out, size_t size);

// The lock of the domains that were looked up.
void acquire_domain_lock();
void release_domain_lock();

}  // namespace ov
