// A path in segments, and walking it.
#include <cstring>

#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"

namespace {

bool is_dotdot(const char* segment, size_t length) {
  return length == 2 && segment[0] == '.' && segment[1] == '.';
}

void store(ov_path* path, const char* segment, size_t length) {
  if (path->count >= OV_PATH_SEGMENTS) return;
  path->segments[path->count++] = {segment, static_cast<uint32_t>(length), 0};
  path->segments[path->count] = {};
}

}  // namespace

void ov_path_init(ov_path* path) {
  if (path == nullptr) return;
  path->prefix[0] = '\0';
  path->count = 0;
  path->segments[0] = {};
}

void ov_path_change_directory(ov_path* path, const char* segment, size_t length) {
  if (path == nullptr || segment == nullptr || length == 0) return;
  if (length == 1 && segment[0] == '.') return;
  const bool up = is_dotdot(segment, length);
  if (up && path->count == 0 && path->prefix[0] != '\0') return;  // a root cannot be left
  if (up && ov_path_can_go_up_a_directory(path)) {
    path->segments[--path->count] = {};
  } else {
    store(path, segment, length);
  }
}

void ov_path_string_to_path(ov_path* path, const char* text) {
  if (path == nullptr || text == nullptr) return;
  while (*(text += strspn(text, "/")) != '\0') {
    const size_t length = strcspn(text, "/");
    ov_path_change_directory(path, text, length);
    text += length;
  }
}

int32_t ov_path_can_go_up_a_directory(const ov_path* path) {
  if (path == nullptr) return 0;
  if (path->count == 0) return path->prefix[0] != '\0' ? 1 : 0;
  for (int32_t i = 0; i < path->count; ++i) {
    const ov_path_segment& segment = path->segments[i];
    if (segment.length < 2 || !is_dotdot(segment.text, 2)) return 1;
  }
  return 0;
}

int32_t ov_path_path_to_string(const ov_path* path, char* out, size_t size) {
  if (path == nullptr || out == nullptr || size == 0) return -1;
  size_t end = 0;
  if (ov_str_to(out, path->prefix, size, &end) != 0) return -1;
  for (int32_t i = 0; i < path->count; ++i) {
    if (i > 0 && ov_str_to(out, "/", size, &end) != 0) return -1;
    const ov_path_segment& segment = path->segments[i];
    if (ov_str_nto(out, segment.text, segment.length, size, &end) != 0) return -1;
  }
  return end > 0 || ov_str_to(out, ".", size, &end) == 0 ? 0 : -1;
}
