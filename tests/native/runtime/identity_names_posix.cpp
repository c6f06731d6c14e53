// Names on a POSIX system, for sanitizer builds. There are no domains, unless a test puts some in
// place together with a name of this computer.
#include <unistd.h>

#include "runtime/platform/identity_platform.h"
#include "tests/native/runtime/code_posix.h"

ov_rc ov::computer_name(char* out, size_t size) {
  return code_of_call(gethostname(out, size));
}

ov_rc ov::flat_domain_name(const char*, char*, size_t) {
  return 1355;
}
