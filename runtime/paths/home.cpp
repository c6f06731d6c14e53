// The home directory of this process's user.
#include "runtime/ov_process.h"
#include "runtime/paths/internal.h"

int32_t ov_path_home_dir(char* out, size_t size) {
  if (out == nullptr) return -1;
  char text[OV_PATH_SIZE];
  if (ov_process_getenv("USERPROFILE", text, sizeof text) != 0) return -1;
  return ov::length_or_failure(ov_path_canonical_path(text, out, size), out);
}
