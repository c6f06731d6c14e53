// Who and where a process of a POSIX system is, for sanitizer builds. There are no domains and
// there is one drive, unless a test puts others in place.
#include <sys/statvfs.h>
#include <unistd.h>

#include <clocale>
#include <mutex>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"
#include "tests/native/runtime/code_posix.h"

namespace {

constexpr ov_rc kNoSuchDomain = 1355;
std::mutex domain_lock;

}  // namespace

ov_rc ov::computer_name(char* out, size_t size) {
  return code_of_call(gethostname(out, size));
}

ov_rc ov::flat_domain_name(const char*, char*, size_t) {
  return kNoSuchDomain;
}

ov_rc ov::locale_name(char* out, size_t size) {
  const char* const name = setlocale(LC_ALL, nullptr);
  return name == nullptr ? OV_ELOCALE : ov_str_ncpy(out, name, size);
}

ov_rc ov::drive_roots(uint16_t* out, size_t units) {
  if (units < 3) return OV_EBUFFER;
  out[0] = u'/';
  out[1] = 0;
  out[2] = 0;
  return 0;
}

ov_rc ov::volume_space(const char* path, uint64_t* total, uint64_t* free) {
  struct statvfs volume;
  if (statvfs(path, &volume) != 0) return code_of_errno();
  *total = uint64_t{volume.f_blocks} * volume.f_frsize;
  *free = uint64_t{volume.f_bfree} * volume.f_frsize;
  return 0;
}

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
