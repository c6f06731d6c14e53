// Removing directories.
#include <cstring>

#include <new>
#include <string>
#include <vector>

#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"

using namespace ov;

namespace {

// Closes the directory at the end.
class OpenDir {
 public:
  OpenDir() = default;
  ~OpenDir() {
    if (open_) ov_dir_close(&dir_);
  }
  OpenDir(const OpenDir&) = delete;
  OpenDir& operator=(const OpenDir&) = delete;

  ov_rc open(const char* path) {
    const ov_rc error = ov_dir_open(path, &dir_);
    open_ = error == 0;
    return error;
  }
  // 28678 behind the last entry; "." and ".." are passed over.
  ov_rc next(ov_dirent* entry) {
    ov_rc error = 0;
    do {
      error = ov_dir_next(&dir_, entry);
    } while (error == 0 && (strcmp(entry->name, ".") == 0 || strcmp(entry->name, "..") == 0));
    return error;
  }

 private:
  ov_dir dir_;
  bool open_ = false;
};

// Deletes what is no directory, and keeps the names of the directories.
ov_rc delete_files(const char* path, std::vector<std::string>* directories) {
  OpenDir dir;
  ov_rc error = dir.open(path);
  ov_dirent entry;
  while (error == 0 && (error = dir.next(&entry)) == 0) {
    char child[OV_PATH_SIZE];
    error = ov_file_append_path(path, entry.name, child, sizeof child);
    ov_stat record;
    if (error == 0) error = ov_file_stat(child, &record, OV_STAT_NO_FOLLOW);
    if (error != 0) break;
    if (record.type == OV_TYPE_DIRECTORY) {
      directories->push_back(entry.name);
    } else {
      error = ov_file_delete(child);
    }
  }
  return error == OV_EDIREND ? 0 : error;
}

ov_rc delete_content(const char* path) {
  std::vector<std::string> directories;
  ov_rc error = delete_files(path, &directories);
  for (size_t i = 0; error == 0 && i < directories.size(); ++i) {
    const char* const name = directories[i].c_str();
    if (strchr(name, '\\') != nullptr) {
      ov_err("Does not support removing files or directories when path='\\'.");
      return OV_EINVAL;
    }
    char child[OV_PATH_SIZE];
    error = ov_file_append_path(path, name, child, sizeof child);
    if (error == 0) error = ov_dir_delete(child, 1);
  }
  return error;
}

}  // namespace

ov_rc ov_dir_delete(const char* path, int32_t recursive) {
  if (path == nullptr) return OV_EINVAL;
  // What a link leads to is not ours to delete, nor the root of the present drive, which a reader
  // shows for an empty path.
  if (recursive != 0 && path[0] != '\0' && !is_directory_link(path)) {
    try {
      const ov_rc error = delete_content(path);
      if (error != 0) return error;
    } catch (const std::bad_alloc&) {
      return OV_ENOMEM;
    }
  }
  return remove_directory(path);
}
