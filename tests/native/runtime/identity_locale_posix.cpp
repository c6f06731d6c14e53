// The program's locale on a POSIX system, for sanitizer builds.
#include <clocale>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

ov_rc ov::locale_name(char* out, size_t size) {
  const char* const name = setlocale(LC_ALL, nullptr);
  return name == nullptr ? OV_ELOCALE : ov_str_ncpy(out, name, size);
}
