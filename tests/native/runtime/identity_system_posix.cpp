// What a POSIX system tells of itself and of this process, for sanitizer builds.
#include <mutex>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

namespace {

std::mutex domain_lock;

}  // namespace

void ov::acquire_domain_lock() {
  domain_lock.lock();
}

void ov::release_domain_lock() {
  domain_lock.unlock();
}

ov_rc ov::system_version(SystemVersion* version) {
  *version = {6, 1, "Service Pack 1"};
  return 0;
}

ov_rc ov_platform_thread_init(void) {
  return 0;
}

ov_rc ov_platform_get_process_uname(char* out, size_t size) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, "owner", size);
}
