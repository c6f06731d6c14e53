// The files of the base runtime on a POSIX system, for sanitizer builds. A record holds the file
// descriptor. Files have no share modes here.
#include <fcntl.h>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "tests/native/runtime/code_posix.h"

using namespace ov;

namespace {

int descriptor(const ov_file* file) {
  return static_cast<int>(reinterpret_cast<intptr_t>(*file));
}

ov_rc open_file(const char* path, ov_file* file, int flags) {
  if (path == nullptr || file == nullptr) return OV_EINVAL;
  *file = kClosedHandle;
  const int opened = open(path, flags | O_CLOEXEC, 0666);
  if (opened < 0) return code_of_errno();
  *file = reinterpret_cast<ov_file>(static_cast<intptr_t>(opened));
  return 0;
}

int32_t type_of(mode_t mode) {
  if (S_ISDIR(mode)) return OV_TYPE_DIRECTORY;
  if (S_ISREG(mode)) return OV_TYPE_REGULAR;
  if (S_ISCHR(mode)) return OV_TYPE_CHARACTER_DEVICE;
  return S_ISLNK(mode) ? OV_TYPE_SYMBOLIC_LINK : OV_TYPE_OTHER;
}

void fill(ov_stat* record, const struct stat& status, bool identity) {
  *record = {};
  record->size = static_cast<uint64_t>(status.st_size);
  record->type = type_of(status.st_mode);
  record->mode = static_cast<int32_t>(status.st_mode);
  record->uid = static_cast<int32_t>(status.st_uid);
  record->gid = static_cast<int32_t>(status.st_gid);
  record->created = status.st_ctime;
  record->modified = status.st_mtime;
  record->accessed = status.st_atime;
  if (identity) {
    record->id = status.st_ino;
    record->links = static_cast<int32_t>(status.st_nlink);
  }
}

}  // namespace

ov_rc ov_file_openread(const char* path, ov_file* file) {
  return open_file(path, file, O_RDONLY);
}

ov_rc ov_file_openwrite(const char* path, ov_file* file, int32_t) {
  return open_file(path, file, O_WRONLY | O_CREAT | O_TRUNC);
}

ov_rc ov_file_openappend(const char* path, ov_file* file, int32_t) {
  return open_file(path, file, O_WRONLY | O_CREAT | O_APPEND);
}

ov_rc ov_file_close(ov_file* file) {
  if (file == nullptr) return OV_EINVAL;
  if (*file == kClosedHandle) return 0;
  if (close(descriptor(file)) != 0) return code_of_errno();
  *file = kClosedHandle;
  return 0;
}

ov_rc ov_file_read(ov_file* file, void* buffer, uint32_t length, uint32_t* count) {
  if (file == nullptr || buffer == nullptr || count == nullptr) return OV_EINVAL;
  *count = 0;
  const ssize_t result = read(descriptor(file), buffer, length);
  if (result < 0) {
    const ov_rc error = code_of_errno();
    ov_err("ov_fileread: ReadFile failed. error=%d", error);
    return error;
  }
  *count = static_cast<uint32_t>(result);
  return 0;
}

ov_rc ov_file_seek(ov_file* file, int64_t offset, int32_t whence) {
  if (file == nullptr) return OV_EINVAL;
  return lseek(descriptor(file), offset, whence) < 0 ? code_of_errno() : 0;
}

ov_rc ov_file_write(ov_file* file, const void* buffer, uint32_t length, uint32_t* count) {
  if (file == nullptr || buffer == nullptr || count == nullptr) return OV_EINVAL;
  *count = 0;
  const ssize_t result = write(descriptor(file), buffer, length);
  if (result < 0) return code_of_errno();
  *count = static_cast<uint32_t>(result);
  return 0;
}

ov_rc ov_file_flush(ov_file* file) {
  return file == nullptr ? OV_EINVAL : code_of_call(fsync(descriptor(file)));
}

ov_rc ov_file_stat(const char* path, ov_stat* record, int32_t flags) {
  if (path == nullptr || record == nullptr) return OV_EINVAL;
  *record = {};
  struct stat status;
  const bool follow = (flags & OV_STAT_NO_FOLLOW) == 0;
  if ((follow ? stat(path, &status) : lstat(path, &status)) != 0) return code_of_errno();
  fill(record, status, (flags & OV_STAT_IDENTITY) != 0);
  return 0;
}

ov_rc ov_file_fstat(ov_file* file, ov_stat* record) {
  if (file == nullptr || record == nullptr) return OV_EINVAL;
  *record = {};
  struct stat status;
  if (fstat(descriptor(file), &status) != 0) return code_of_errno();
  fill(record, status, true);
  return 0;
}

ov_rc ov_file_delete(const char* path) {
  return path == nullptr ? OV_EINVAL : code_of_call(unlink(path));
}

ov_rc ov_file_hardlink(const char* existing, const char* name) {
  if (existing == nullptr || name == nullptr) return OV_EINVAL;
  return code_of_call(link(existing, name));
}
