// Times, permissions and owners of files.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/files/handle.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

namespace {

// The bit of a mode that lets the owner write; the platform keeps no other.
constexpr int32_t kOwnerWrites = 0200;
// Stands for an owner or a group that is to stay.
constexpr int32_t kSame = -1;

// A time for a system call; null, which leaves the file's own, without one.
class Time {
 public:
  explicit Time(const int64_t* seconds) : given_(seconds != nullptr) {
    uint64_t number = 0;
    valid_ = !given_ || filetime_of(*seconds, &number);
    time_ = {static_cast<DWORD>(number), static_cast<DWORD>(number >> 32)};
  }
  bool valid() const { return valid_; }
  const FILETIME* get() const { return given_ ? &time_ : nullptr; }

 private:
  const bool given_;
  bool valid_;
  FILETIME time_;
};

}  // namespace

ov_rc ov_file_utime3(const char* path, const int64_t* accessed, const int64_t* modified,
                     const int64_t* created) {
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  const Time access(accessed);
  const Time write(modified);
  const Time creation(created);
  if (!access.valid() || !write.valid() || !creation.valid()) return OV_EINVAL;
  const FileHandle file(CreateFileW(wide.text, FILE_WRITE_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file) return last_code();
  return code_of(SetFileTime(file.get(), creation.get(), access.get(), write.get()));
}

ov_rc ov_file_utime(const char* path, const int64_t* accessed, const int64_t* modified) {
  return ov_file_utime3(path, accessed, modified, nullptr);
}

ov_rc ov_file_permissions(const char* path, int32_t mode) {
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  const DWORD present = GetFileAttributesW(wide.text);
  if (present == INVALID_FILE_ATTRIBUTES) return last_code();
  const DWORD rest = present & ~DWORD{FILE_ATTRIBUTE_READONLY};
  const DWORD wanted = mode & kOwnerWrites ? rest : rest | FILE_ATTRIBUTE_READONLY;
  // No attribute at all has a number of its own.
  return code_of(SetFileAttributesW(wide.text, wanted != 0 ? wanted : FILE_ATTRIBUTE_NORMAL));
}

ov_rc ov_file_chown(const char* path, int32_t uid, int32_t gid) {
  ov_stat record;
  if (const ov_rc error = ov_file_stat(path, &record, 0)) return error;
  const bool same = (uid == kSame || uid == record.uid) && (gid == kSame || gid == record.gid);
  return same ? 0 : OV_ENOTSUP;
}
