// Reads a directory entry by entry and closes it at the end: a local object of one thread, or a
// member of one. Not part of the public header.
#pragma once

#include <cstring>
#include <string_view>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_strings.h"

namespace ov {

class DirReader {
 public:
  DirReader() = default;
  ~DirReader() {
    if (open_) ov_dir_close(&dir_);
  }
  DirReader(const DirReader&) = delete;
  DirReader& operator=(const DirReader&) = delete;

  // Once. Error codes of ov_dir_open.
  ov_rc open(const char* path) {
    const ov_rc error = ov_dir_open(path, &dir_);
    open_ = error == 0;
    return error;
  }

  // Delivers the next entry; 28678 behind the last one. Passes over a name that ends in a dot: it
  // is
  // "." or "..", or one that a path cannot name, as what is read there is the directory itself or
  // an entry without the dot. Passes also over a name that an ov_dirent has no room for or that is
  // no text: the others are to be had all the same.
  ov_rc next(ov_dirent* entry) {
    for (;;) {
      const ov_rc error = ov_dir_next(&dir_, entry);
      const bool unnamed = error != 0 && entry->find != nullptr;
      if (error != 0 && !unnamed) return error;
      if (!unnamed && !std::string_view(entry->name).ends_with('.')) return 0;
    }
  }

 private:
  ov_dir dir_;
  bool open_ = false;
};

// Writes the path of an entry of `dir`. As ov_file_append_path does, but with no second separator
// behind a backslash, which a long path may not have.
inline ov_rc entry_path(const char* dir, const char* name, char* out, size_t size) {
  const size_t length = strlen(dir);
  if (length == 0 || dir[length - 1] != '\\') return ov_file_append_path(dir, name, out, size);
  if (length + strlen(name) >= size) return OV_EBUFFER;
  size_t end = 0;
  const ov_rc error = ov_str_to(out, dir, size, &end);
  return error != 0 ? error : ov_str_to(out, name, size, &end);
}

}  // namespace ov
