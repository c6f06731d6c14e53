// Trees of directories: made and deleted.
#include "runtime/ov_files.h"

#include <cstring>

#include <new>
#include <string>
#include <vector>

#include "runtime/files/dir_reader.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"

using namespace ov;

namespace {

// What is at `path`: 0 a directory, 267 something else, or the code of the look.
ov_rc check_directory(const char* path) {
  ov_stat record;
  ov_rc error = ov_file_stat(path, &record, OV_STAT_NO_FOLLOW);
  if (error == 0 && record.type == OV_TYPE_SYMBOLIC_LINK) error = ov_file_stat(path, &record, 0);
  if (error != 0) return error;
  return record.type == OV_TYPE_DIRECTORY ? 0 : OV_ENOTDIR;
}

ov_rc tell(ov_dir_cb callback, const char* path, int32_t created, void* argument) {
  return callback == nullptr ? 0 : callback(path, created, argument);
}

ov_rc create_one(const char* path, ov_dir_cb callback, void* argument) {
  ov_rc error = check_directory(path);
  if (error == OV_ENOENT || error == OV_ENOPATH) {
    error = make_directory(path);
    if (error == 0) return tell(callback, path, 1, argument);
    // Somebody else may have made it in between; a trailing slash names one that is there, too.
    if (error == OV_EEXIST) error = check_directory(path);
  }
  return error == 0 ? tell(callback, path, 0, argument) : error;
}

// Makes what is above the last part, from the top.
ov_rc create_above(const char* path, ov_dir_cb callback, void* argument) {
  char prefix[OV_PATH_SIZE];
  size_t length = 0;  // of what stands in `prefix`
  for (const char* end = ov_path_next_dirsep(path); end != nullptr; end = strchr(end + 1, '/')) {
    const auto next = static_cast<size_t>(end - path);
    if (next >= sizeof prefix) return OV_ERANGE;
    memcpy(prefix + length, path + length, next - length);
    length = next;
    prefix[length] = '\0';
    const ov_rc error = create_one(prefix, callback, argument);
    if (error != 0) return error;
    while (end[1] == '/') ++end;
  }
  return 0;
}

// Deletes what is no directory, and keeps the names of the directories.
ov_rc delete_files(const char* path, std::vector<std::string>* directories) {
  DirReader dir;
  ov_rc error = dir.open(path);
  ov_dirent entry;
  while (error == 0 && (error = dir.next(&entry)) == 0) {
    char child[OV_PATH_SIZE];
    error = entry_path(path, entry.name, child, sizeof child);
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
    error = entry_path(path, name, child, sizeof child);
    if (error == 0) error = ov_dir_delete(child, 1);
  }
  return error;
}

}  // namespace

ov_rc ov_dir_create_callback(const char* path, int32_t, int32_t recursive, ov_dir_cb callback,
                             void* argument) {
  if (path == nullptr) return OV_EINVAL;
  const ov_rc found = check_directory(path);
  if (recursive != 0 && (found == OV_ENOENT || found == OV_ENOPATH)) {
    const ov_rc error = create_above(path, callback, argument);
    if (error != 0) return error;
  }
  return create_one(path, callback, argument);
}

ov_rc ov_dir_create_callback2(const char* path, int32_t mode, int32_t recursive, ov_dir_cb callback,
                              void* argument) {
  return ov_dir_create_callback(path, mode, recursive, callback, argument);
}

ov_rc ov_dir_create(const char* path, int32_t mode, int32_t recursive) {
  return ov_dir_create_callback(path, mode, recursive, nullptr, nullptr);
}

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
