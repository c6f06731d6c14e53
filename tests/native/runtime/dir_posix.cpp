// The directories of the base runtime on a POSIX system, for sanitizer builds. A record holds the
// directory stream.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/native/runtime/code_posix.h"

using namespace ov;

ov_rc ov_dir_open(const char* path, ov_dir* dir) {
  if (path == nullptr || dir == nullptr) return OV_EINVAL;
  *dir = {};
  dir->state = kReadNext;
  DIR* const opened = opendir(path[0] == '\0' ? "/" : path);
  dir->handle = opened == nullptr ? kClosedHandle : opened;
  return opened == nullptr ? code_of_errno() : 0;
}

ov_rc ov_dir_next(ov_dir* dir, ov_dirent* entry) {
  if (dir == nullptr || entry == nullptr) return OV_EINVAL;
  entry->find = nullptr;
  errno = 0;
  const dirent* const next = readdir(static_cast<DIR*>(dir->handle));
  if (next == nullptr) return errno == 0 ? OV_EDIREND : code_of_errno();
  entry->find = &dir->data;
  return ov_str_ncpy(entry->name, next->d_name, sizeof entry->name);
}

ov_rc ov_dir_close(ov_dir* dir) {
  if (dir == nullptr) return OV_EINVAL;
  if (dir->handle != kClosedHandle) closedir(static_cast<DIR*>(dir->handle));
  dir->handle = kClosedHandle;
  return 0;
}

ov_rc ov::remove_directory(const char* path) {
  return code_of_call(rmdir(path));
}

// ov_file_stat makes the distinction here.
bool ov::is_directory_link(const char*) {
  return false;
}

ov_rc ov::make_directory(const char* path) {
  return code_of_call(mkdir(path, 0777));
}
