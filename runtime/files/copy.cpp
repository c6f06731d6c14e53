// The record of an open file, and copying by it.
#include "runtime/files/handle.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"

namespace {

constexpr uint32_t kPieceSize = 4096;

ov_rc write_all(ov_file* file, const char* data, uint32_t length) {
  while (length > 0) {
    uint32_t written = 0;
    const ov_rc error = ov_file_write(file, data, length, &written);
    if (error != 0) return error;
    if (written == 0) return OV_EIO;  // it would go on like this for ever
    data += written;
    length -= written;
  }
  return 0;
}

}  // namespace

ov_rc ov_file_init(ov_file* file) {
  if (file == nullptr) return OV_EINVAL;
  *file = ov::kClosedHandle;
  return 0;
}

int32_t ov_file_valid(const ov_file* file) {
  return file != nullptr && *file != ov::kClosedHandle ? 1 : 0;
}

ov_rc ov_file_exist(const char* path, int32_t flags) {
  ov_stat record;
  return ov_file_stat(path, &record, flags);
}

ov_rc ov_file_copy(const char* from, const char* to, int32_t mode) {
  ov::FileHandle source;
  ov_rc error = ov_file_openread(from, source.record());
  if (error != 0) return error;
  ov::FileHandle target;
  error = ov_file_openwrite(to, target.record(), mode);
  if (error != 0) return error;
  ov_stat record;
  error = ov_file_fstat(source.record(), &record);
  if (error != 0) return error;
  for (;;) {
    char piece[kPieceSize];
    uint32_t count = 0;
    error = ov_file_read(source.record(), piece, sizeof piece, &count);
    if (error != 0 || count == 0) return error;
    error = write_all(target.record(), piece, count);
    if (error != 0) return error;
  }
}
