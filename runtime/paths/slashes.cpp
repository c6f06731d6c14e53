// Slashes: separators, trailing and doubled ones, backslashes, the root in front.
#include "runtime/paths/internal.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

const char* ov_path_next_dirsep(const char* path) {
  if (path == nullptr) return nullptr;
  const char* next = path + strspn(path, "/");
  if (next == path && path[0] != '\0' && path[1] == ':') {
    next = path + 2 + strspn(path + 2, "/");
  } else if (ov_path_is_unc_path(path)) {
    next += strcspn(next, "/");
    next += strspn(next, "/");
  }
  return strchr(next, '/');
}

int32_t ov_path_remove_trailing_slashes(const char* in, char* out, size_t size) {
  if (in == nullptr || out == nullptr) return -1;
  size_t length = strlen(in);
  if (length >= size) return -1;
  while (length > 0 && in[length - 1] == '/') --length;
  memmove(out, in, length);
  out[length] = '\0';
  return static_cast<int32_t>(length);
}

void ov_path_remove_redundant_slashes(char* path, size_t size) {
  if (path == nullptr || size == 0 || path[0] == '\0') return;
  const size_t length = ov_str_nlen(path, size);
  size_t end = 1;  // the first two characters may both be slashes
  for (size_t i = 1; i < length; ++i) {
    if (path[i] == '/' && path[end - 1] == '/' && end > 1) continue;
    path[end++] = path[i];
  }
  if (end < length) path[end] = '\0';
}

void ov_path_convert_path_to_forward_slashes(char* path, size_t size) {
  if (path == nullptr) return;
  for (size_t i = 0; i < size && path[i] != '\0'; ++i) {
    if (path[i] == '\\') path[i] = '/';
  }
}

ov_rc ov_path_enforce_rootedness(char* path, size_t size) {
  if (path == nullptr || size == 0 || ov_str_nlen(path, size) == size) return OV_EINVAL;
  char* start = path + (ov::skip_white_space(path) - path);
  ov_path_convert_path_to_forward_slashes(start, size - static_cast<size_t>(start - path));
  const size_t length = strlen(start);
  const bool drive = ov_path_has_windows_drive_letter(start);
  if (drive && start[2] != '/') return OV_EINVAL;
  if (drive || start[0] == '/') {
    memmove(path, start, length + 1);
    return 0;
  }
  if (length + 2 > size) return OV_EPATHMAX;
  memmove(path + 1, start, length + 1);
  path[0] = '/';
  return 0;
}
