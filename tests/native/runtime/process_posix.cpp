// What the base runtime tells of this process on a POSIX system, for sanitizer builds.
#include <cstdlib>
#include <unistd.h>

#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/internal.h"
#include "runtime/errors/asserts.h"
#include "tests/native/runtime/code_posix.h"

ov_rc ov_process_getenv(const char* name, char* buffer, size_t size) {
  if (!ov::assert_not_null(name) || buffer == nullptr || size == 0) return OV_EINVAL;
  const char* const value = getenv(name);
  if (value == nullptr || value[0] == '\0') return OV_EINVAL;
  return ov_str_ncpy(buffer, value, size);
}

ov_rc ov_process_setenv(const char* name, const char* value) {
  if (name == nullptr) return OV_EINVAL;
  return ov::code_of_call(value == nullptr ? unsetenv(name) : setenv(name, value, 1));
}

int32_t ov_path_executable_path(char* out, size_t size) {
  char text[OV_PATH_SIZE];
  const ssize_t length = readlink("/proc/self/exe", text, sizeof text - 1);
  if (length < 0) return ov::no_path(out, size);
  text[length] = '\0';
  return ov::length_or_failure(ov_path_canonical_path(text, out, size), out);
}
