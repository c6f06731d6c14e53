// A path's form: tests of it, its root, its slashes.
#include "runtime/paths/internal.h"

#include <cstdint>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_uri.h"
#include "runtime/strings/ascii.h"

namespace ov {

const char* skip_white_space(const char* text) {
  return text + strspn(text, " \t\n\v\f\r");
}

namespace {

// Writes into a bounded buffer; remembers that something did not fit.
struct PrefixWriter {
  char* out;
  size_t room;  // the terminator's byte is already taken off
  bool fits = true;

  void put(const char* text, size_t length) {
    if (length > room) {
      fits = false;
      return;
    }
    memcpy(out, text, length);
    out += length;
    room -= length;
  }
  int32_t finish() {
    *out = '\0';
    return fits ? 0 : -1;
  }
};

}  // namespace

int32_t unc_parts(const char* path, char* prefix, size_t prefixSize, const char** rest) {
  if (path == nullptr || prefix == nullptr || prefixSize == 0 || rest == nullptr) return -1;
  const char* host = path + strspn(path, "/");
  const size_t hostLength = strcspn(host, "/");
  const char* share = host + hostLength + strspn(host + hostLength, "/");
  const size_t shareLength = strcspn(share, "/");
  if (hostLength == 0 || shareLength == 0) return -1;
  const char* behind = share + shareLength;
  *rest = behind[0] == '\0' || behind[1] == '\0' ? nullptr : behind + 1;
  PrefixWriter writer{prefix, prefixSize - 1};
  writer.put("//", 2);
  writer.put(host, hostLength);
  writer.put("/", 1);
  writer.put(share, shareLength);
  writer.put("/", 1);
  return writer.finish();
}

int32_t extract_prefix(const char* path, char* prefix, size_t prefixSize, const char** rest) {
  if (path == nullptr || prefix == nullptr || prefixSize == 0 || rest == nullptr) return -1;
  if (ov_path_is_unc_path(path) != 0) return unc_parts(path, prefix, prefixSize, rest);
  PrefixWriter writer{prefix, prefixSize - 1};
  if (ov_path_has_windows_drive_letter(path) != 0) {
    const char* drive = skip_white_space(path);
    writer.put(drive, 2);
    writer.put("/", 1);
    *rest = drive + 2 + strspn(drive + 2, "/");
  } else if (path[0] == '/') {
    writer.put("/", 1);
    *rest = path + (path[1] == '/' ? 2 : 1);
  } else {
    *rest = path;
  }
  return writer.finish();
}

}  // namespace ov

int32_t ov_path_extract_prefix(const char* path, char* prefix, const char** rest) {
  const bool good = ov::extract_prefix(path, prefix, OV_PATH_SIZE, rest) == 0;
  return good ? 0 : ov::no_path(prefix, OV_PATH_SIZE);
}

int32_t ov_path_unc_parts(const char* path, char* prefix, const char** rest) {
  const bool good = ov::unc_parts(path, prefix, OV_PATH_SIZE, rest) == 0;
  return good ? 0 : ov::no_path(prefix, OV_PATH_SIZE);
}

int32_t ov_path_is_unc_path(const char* path) {
  if (path == nullptr || path[0] != '/' || path[1] != '/' || path[2] == '\0') return 0;
  return strchr(path + 3, '/') != nullptr ? 1 : 0;
}

int32_t ov_path_has_windows_drive_letter(const char* path) {
  if (path == nullptr) return 0;
  const char* start = ov::skip_white_space(path);
  return ov::is_letter(start[0]) && start[1] == ':' ? 1 : 0;
}

int32_t ov_path_is_relative(const char* path) {
  if (path == nullptr) return 1;
  if (ov_uri_valid_uri(path) != 0) return 0;
  const char* start = ov::skip_white_space(path);
  if (start[0] == '/' || start[0] == '\\') return 0;
  if (ov_path_has_windows_drive_letter(start) == 0) return 1;
  return start[2] != '/' && start[2] != '\\' ? 1 : 0;
}

int32_t ov_path_is_zept_uri(const char* path) {
  constexpr char kScheme[] = "zept://";
  return path != nullptr && strncmp(path, kScheme, sizeof kScheme - 1) == 0 ? 1 : 0;
}

int32_t ov_path_contains_dotdot(const char* path) {
  if (path == nullptr) return 0;
  for (const char* segment = path;;) {
    const size_t length = strcspn(segment, "/");
    if (length == 2 && segment[0] == '.' && segment[1] == '.') return 1;
    if (segment[length] == '\0') return 0;
    segment += length + 1;
  }
}

const char* ov_path_next_dirsep(const char* path) {
  if (path == nullptr) return nullptr;
  const char* next = path + strspn(path, "/");
  if (next == path && path[0] != '\0' && path[1] == ':') {
    next = path + 2 + strspn(path + 2, "/");
  } else if (ov_path_is_unc_path(path) != 0) {
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
  const bool drive = ov_path_has_windows_drive_letter(start) != 0;
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
