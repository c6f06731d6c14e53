// Tests of a path's form, and its root.
#include "runtime/paths/internal.h"

#include <cstdint>
#include <cstring>

#include "runtime/ov_uri.h"
#include "runtime/strings/ascii.h"

namespace ov {

const char* skip_white_space(const char* text) {
  return text + strspn(text, " \t\n\v\f\r");
}

bool is_drive_letter(char c) {
  return is_letter(c);
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
  if (ov_path_is_unc_path(path)) return unc_parts(path, prefix, prefixSize, rest);
  PrefixWriter writer{prefix, prefixSize - 1};
  if (ov_path_has_windows_drive_letter(path)) {
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
  return ov::extract_prefix(path, prefix, OV_PATH_SIZE, rest);
}

int32_t ov_path_unc_parts(const char* path, char* prefix, const char** rest) {
  return ov::unc_parts(path, prefix, OV_PATH_SIZE, rest);
}

int32_t ov_path_is_unc_path(const char* path) {
  if (path == nullptr || path[0] != '/' || path[1] != '/' || path[2] == '\0') return 0;
  return strchr(path + 3, '/') != nullptr ? 1 : 0;
}

int32_t ov_path_has_windows_drive_letter(const char* path) {
  if (path == nullptr) return 0;
  const char* start = ov::skip_white_space(path);
  return ov::is_drive_letter(start[0]) && start[1] == ':' ? 1 : 0;
}

int32_t ov_path_is_relative(const char* path) {
  if (path == nullptr) return 1;
  if (ov_uri_valid_uri(path)) return 0;
  const char* start = ov::skip_white_space(path);
  if (start[0] == '/' || start[0] == '\\') return 0;
  if (!ov_path_has_windows_drive_letter(start)) return 1;
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
