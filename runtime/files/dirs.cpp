// Making directories.
#include "runtime/ov_files.h"

#include <cstring>

#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"

using namespace ov;

namespace {

// What is at `path`: 0 a directory, 267 something else, or the code of the look.
ov_rc check_directory(const char* path) {
  ov_stat record;
  ov_rc error = ov_file_stat(path, &record, OV_STAT_NO_FOLLOW);
  if (error == 0 && record.type == OV_TYPE_SYMBOLIC_LINK) error = ov_file_stat(path, &record, 0);
  if (error != 0) return error;
  return record.type == OV_TYPE_DIRECTORY ? 0 : kNotDirectory;
}

ov_rc tell(ov_dir_cb callback, const char* path, int32_t created, void* argument) {
  return callback == nullptr ? 0 : callback(path, created, argument);
}

ov_rc create_one(const char* path, ov_dir_cb callback, void* argument) {
  ov_rc error = check_directory(path);
  if (error == kNoEntry || error == kNoPath) {
    error = make_directory(path);
    if (error == 0) return tell(callback, path, 1, argument);
    // Somebody else may have made it in between; a trailing slash names one that is there, too.
    if (error == kAlreadyExists) error = check_directory(path);
  }
  return error == 0 ? tell(callback, path, 0, argument) : error;
}

ov_rc create_above(const char* path, ov_dir_cb callback, void* argument) {
  for (const char* end = ov_path_next_dirsep(path); end != nullptr;) {
    const auto length = static_cast<size_t>(end - path);
    char prefix[OV_PATH_SIZE];
    if (length >= sizeof prefix) return OV_ERANGE;
    memcpy(prefix, path, length);
    prefix[length] = '\0';
    const ov_rc error = create_one(prefix, callback, argument);
    if (error != 0) return error;
    while (end[1] == '/') ++end;
    end = strchr(end + 1, '/');
  }
  return 0;
}

}  // namespace

ov_rc ov_dir_create_callback(const char* path, int32_t, int32_t recursive, ov_dir_cb callback,
                             void* argument) {
  if (path == nullptr) return OV_EINVAL;
  const ov_rc found = check_directory(path);
  if (recursive != 0 && (found == kNoEntry || found == kNoPath)) {
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
