// What the file family does on texts and records, with no call of the system.
#include "runtime/ov_files.h"

#include <string.h>

#include "runtime/files_internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

ov_rc ov_file_init(ov_file* file) {
  if (file == nullptr) return OV_EINVAL;
  *file = ov::kClosedHandle;
  return 0;
}

int32_t ov_file_valid(const ov_file* file) {
  return file != nullptr && *file != ov::kClosedHandle;
}

ov_rc ov_file_exist(const char* path, int32_t flags) {
  ov_stat record;
  return ov_file_stat(path, &record, flags);
}

void ov_file_tounixpath(char* path) {
  ov_str_repchr(path, '\\', '/');
}

ov_rc ov_file_append_path(const char* dir, const char* name, char* out, size_t size) {
  if (dir == nullptr || name == nullptr || out == nullptr) return OV_EINVAL;
  if (size == 0) return 0;
  size_t end = strlen(dir);
  if (out != dir) {
    end = 0;
    const ov_rc error = ov_str_to(out, dir, size, &end);
    if (error != 0) return error;
  } else if (end >= size) {
    return OV_EBUFFER;
  }
  if (end > 0 && out[end - 1] != '/') {
    const ov_rc error = ov_str_to(out, "/", size, &end);
    if (error != 0) return error;
  }
  return ov_str_to(out, name, size, &end);
}
