// A path in segments, and walking it.
#include <cstring>

#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"

namespace {

bool is_dotdot(const char* segment, size_t length) {
  return length == 2 && segment[0] == '.' && segment[1] == '.';
}

// Only a segment that does not begin with ".." can be left.
bool can_be_left(const ov_path_segment& segment) {
  return segment.length < 2 || !is_dotdot(segment.text, 2);
}

// A path along which ".." is walked: how many of its segments can be left is counted at the first
// "..", and kept from then on, since counting at each would cost the square of the path's length.
class Walk {
 public:
  explicit Walk(ov_path* path) : path_(path) {}

  void step(const char* segment, size_t length) {
    if (length == 0 || (length == 1 && segment[0] == '.')) return;
    const bool up = is_dotdot(segment, length);
    if (up && path_->count == 0 && path_->prefix[0] != '\0') return;  // a root cannot be left
    if (up) count();
    if (up && leavable_ > 0) {
      drop();
    } else {
      store({segment, static_cast<uint32_t>(length), 0});
    }
  }

 private:
  void count() {
    if (counted_) return;
    counted_ = true;
    for (int32_t i = 0; i < path_->count; ++i) note(path_->segments[i], 1);
  }
  void note(const ov_path_segment& segment, int32_t change) {
    if (can_be_left(segment)) leavable_ += change;
  }
  void drop() {
    ov_path_segment& last = path_->segments[--path_->count];
    note(last, -1);
    last = {};
  }
  void store(const ov_path_segment& segment) {
    if (path_->count >= OV_PATH_SEGMENTS) return;
    if (counted_) note(segment, 1);
    path_->segments[path_->count++] = segment;
    path_->segments[path_->count] = {};
  }

  ov_path* const path_;
  bool counted_ = false;
  int32_t leavable_ = 0;
};

}  // namespace

void ov_path_init(ov_path* path) {
  if (path == nullptr) return;
  path->prefix[0] = '\0';
  path->count = 0;
  path->segments[0] = {};
}

void ov_path_change_directory(ov_path* path, const char* segment, size_t length) {
  if (path != nullptr && segment != nullptr) Walk(path).step(segment, length);
}

void ov_path_string_to_path(ov_path* path, const char* text) {
  if (path == nullptr || text == nullptr) return;
  Walk walk(path);
  while (*(text += strspn(text, "/")) != '\0') {
    const size_t length = strcspn(text, "/");
    walk.step(text, length);
    text += length;
  }
}

int32_t ov_path_can_go_up_a_directory(const ov_path* path) {
  if (path == nullptr) return 0;
  if (path->count == 0) return path->prefix[0] != '\0' ? 1 : 0;
  for (int32_t i = 0; i < path->count; ++i) {
    if (can_be_left(path->segments[i])) return 1;
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
