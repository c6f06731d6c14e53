// One drive on a POSIX system, for sanitizer builds.
#include <sys/statvfs.h>

#include "runtime/ov_errors.h"
#include "runtime/platform/identity_platform.h"
#include "tests/native/runtime/code_posix.h"

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
