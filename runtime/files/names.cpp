// Names of files: joined, cut and compared as texts.
#include "runtime/ov_files.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/ascii.h"

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

ov_rc ov_file_basename(const char* path, const char** result) {
  if (path == nullptr || result == nullptr) return OV_EINVAL;
  const char* const slash = strrchr(path, '/');
  const char* const name = slash == nullptr ? path : slash + 1;
  *result = *name == '\0' ? nullptr : name;
  return *result == nullptr ? OV_EBASENAME : 0;
}

namespace {

// Length of "x:/", "//", "/" or "./" at the start.
size_t root_length(const char* path) {
  if (ov::is_letter(path[0]) && path[1] == ':' && path[2] == '/') return 3;
  if (path[0] == '/') return path[1] == '/' ? 2 : 1;
  return path[0] == '.' && path[1] == '/' ? 2 : 0;
}

void cut_trailing_slashes(char* text) {
  size_t length = strlen(text);
  while (length > 0 && text[length - 1] == '/') --length;
  text[length] = '\0';
}

}  // namespace

void ov_file_dirname(char* path) {
  if (path == nullptr || path[0] == '\0') return;
  const size_t root = root_length(path);
  const bool network = root == 2 && path[0] == '/';
  char* const body = path + root;
  if (!network) cut_trailing_slashes(body);
  char* const slash = strrchr(body, '/');
  if (slash != nullptr) {
    *slash = '\0';
    cut_trailing_slashes(body);
  } else if (root > 0) {
    *body = '\0';
  } else {
    memcpy(path, ".", 2);
  }
}

ov_rc ov_file_path_compare(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return OV_EINVAL;
  const size_t length = strlen(a);
  if (strncmp(a, b, length) != 0) return OV_EPATHMATCH;
  const bool boundary =
      b[length] == '\0' || b[length] == '/' || (length > 0 && a[length - 1] == '/');
  return boundary ? 0 : OV_EPATHMATCH;
}
