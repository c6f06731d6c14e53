// Canonical paths, joining, and what is built on them.
#include "runtime/paths/internal.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <initializer_list>
#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_uri.h"

namespace {

// Of a path with the way to its parent behind it, and of one that is tested for climbing out, both
// with the terminator.
constexpr size_t kParentSize = 524;
constexpr size_t kClimbSize = 523;

// A copy of a path to work on: on the stack at the usual sizes, else on the heap.
class WorkCopy {
 public:
  // With backslashes turned into slashes. Empty of `text()` without memory.
  WorkCopy(const char* source, size_t length) {
    if (length >= sizeof local_) heap_.reset(new (std::nothrow) char[length + 1]);
    text_ = length < sizeof local_ ? local_ : heap_.get();
    if (text_ == nullptr) return;
    for (size_t i = 0; i < length; ++i) text_[i] = source[i] == '\\' ? '/' : source[i];
    text_[length] = '\0';
  }
  const char* text() const { return text_; }

 private:
  char local_[1024];
  std::unique_ptr<char[]> heap_;
  char* text_;
};

// Not strspn and strcspn, which build a table of all characters for each call.
const char* behind_slashes(const char* text) {
  while (*text == '/') ++text;
  return text;
}

const char* segment_end(const char* text) {
  while (*text != '\0' && *text != '/') ++text;
  return text;
}

// Writes segments behind a prefix, removing "." and "..".
class SegmentWriter {
 public:
  SegmentWriter(char* out, size_t prefixLength, size_t size)
      : out_(out), start_(prefixLength), end_(prefixLength), limit_(size - 1) {}

  // Adds a segment and the slash behind it, if it has one; false when they do not fit.
  bool add(const char* segment, size_t length, bool slash) {
    if (length + (slash ? 1 : 0) > limit_ - end_) return false;
    if (length == 1 && segment[0] == '.') return true;
    if (length == 2 && segment[0] == '.' && segment[1] == '.') {
      if (real_ > 0) {
        removeLast();
        return true;
      }
      if (start_ > 0) return true;
    } else {
      ++real_;
    }
    memcpy(out_ + end_, segment, length);
    end_ += length;
    if (slash) out_[end_++] = '/';
    return true;
  }

  void finish() {
    if (real_ > 0 && out_[end_ - 1] == '/') --end_;
    if (end_ == 0 && limit_ > 0) out_[end_++] = '.';
    out_[end_] = '\0';
  }

 private:
  void removeLast() {
    --end_;  // the slash behind the segment, since another segment follows
    while (end_ > start_ && out_[end_ - 1] != '/') --end_;
    --real_;
  }

  char* out_;
  size_t start_;
  size_t end_;
  size_t limit_;     // offset of the last byte of the buffer
  size_t real_ = 0;  // segments that ".." can remove
};

void copy_uri(const char* in, char* out, size_t size) {
  const size_t length = strlen(in);
  if (length < size) {
    memmove(out, in, length + 1);  // the two may be one buffer
  } else {
    ov_str_ncpy(out, in, size);
  }
}

bool overlaps(const char* text, const char* buffer, size_t size) {
  const auto first = reinterpret_cast<uintptr_t>(text);
  const uintptr_t last = first + strlen(text);
  const auto start = reinterpret_cast<uintptr_t>(buffer);
  return first < start + size && start <= last;
}

bool equal(const char* a, const char* b) {
  return strcmp(a, b) == 0;
}

}  // namespace

int32_t ov::length_or_failure(int32_t result, const char* out) {
  return result == 0 ? static_cast<int32_t>(strlen(out)) : -1;
}

int32_t ov::no_path(char* out, size_t size) {
  if (out != nullptr && size > 0) out[0] = '\0';
  return -1;
}

namespace {

// ov_path_canonical_path, which may leave a beginning in `out` when it fails.
int32_t write_canonical(const char* in, char* out, size_t size) {
  if (in == nullptr || in[0] == '\0') {
    out[0] = '\0';
    return 0;
  }
  if (strchr(in, '\n') != nullptr) return -1;
  if (ov_path_is_zept_uri(in) != 0 || ov_uri_valid_uri(in) != 0) {
    copy_uri(in, out, size);
    return 0;
  }
  const size_t length = ov_str_nlen(in, size);
  if (length == size) return -1;
  const WorkCopy work(in, length);
  if (work.text() == nullptr) return -1;

  const char* rest = nullptr;
  if (ov::extract_prefix(work.text(), out, size, &rest) != 0) return -1;
  if (rest == nullptr) return 0;
  SegmentWriter writer(out, strlen(out), size);
  rest = behind_slashes(rest);
  while (*rest != '\0') {
    const char* const end = segment_end(rest);
    if (!writer.add(rest, static_cast<size_t>(end - rest), *end == '/')) return -1;
    rest = behind_slashes(end);
  }
  writer.finish();
  return 0;
}

}  // namespace

int32_t ov_path_canonical_path(const char* in, char* out, size_t size) {
  if (out == nullptr || size == 0) return -1;
  return write_canonical(in, out, size) == 0 ? 0 : ov::no_path(out, size);
}

char* ov_path_build_canonical_path(char* out, size_t size, ov_rc* err, const char* format, ...) {
  ov_rc code = 0;
  if (out == nullptr) {
    ov_log("ov_path_build_canonical_path: Null buffer");
    code = OV_EINVAL;
  } else {
    char text[OV_PATH_SIZE + 1];
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = ov_vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < 0 || length >= OV_PATH_SIZE) {
      code = OV_ERANGE;
    } else if (ov_path_canonical_path(text, out, size) != 0) {
      code = OV_EINVAL;
    }
  }
  if (err != nullptr) *err = code;
  return code == 0 ? out : nullptr;
}

int32_t ov_path_append(const char* dir, const char* rel, char* out, size_t size) {
  if (dir == nullptr || rel == nullptr || out == nullptr) return -1;
  const size_t dirLength = strlen(dir);
  if (dirLength >= size) return 0;
  const bool relative = ov_path_is_relative(rel) != 0;
  if (dirLength == 0 || (equal(dir, ".") && relative) || (equal(dir, "/") && !relative)) {
    return ov_path_canonical_path(rel, out, size);
  }
  char copy[OV_PATH_SIZE];
  if (overlaps(rel, out, size)) {
    if (ov_str_ncpy(copy, rel, sizeof copy) != 0) return 0;
    rel = copy;
  }
  memmove(out, dir, dirLength + 1);
  if (out[dirLength - 1] != '/' && ov_str_ncat(out, "/", size) != 0) return 0;
  rel += strspn(rel, "/");
  if (ov_str_ncat(out, rel, size) != 0) return 0;
  return ov_path_canonical_path(out, out, size);
}

int32_t ov_path_parent_dir(const char* path, char* out, size_t size) {
  if (path == nullptr || path[0] == '\0') return ov::no_path(out, size);
  char text[kParentSize];
  if (ov_str_ncpy(text, path, sizeof text) != 0) return ov::no_path(out, size);
  const bool slash = text[strlen(text) - 1] == '/';
  if (ov_str_ncat(text, slash ? ".." : "/..", sizeof text) != 0) return ov::no_path(out, size);
  return ov::length_or_failure(ov_path_canonical_path(text, out, size), out);
}

int32_t ov_path_leaves_home_dir(const char* path) {
  // Two roots, because a path can climb out and in again through a directory of the same name.
  for (const char root : {'a', 'b'}) {
    char text[kClimbSize];
    const char* const shown = path == nullptr ? "" : path;
    if (ov_str_printf_to(text, sizeof text, nullptr, "/%c/%s", root, shown) != 0) return 1;
    if (ov_path_canonical_path(text, text, sizeof text) != 0 || text[1] != root) return 1;
  }
  return 0;
}
