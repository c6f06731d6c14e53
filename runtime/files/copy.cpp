// Copying a file.
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"

namespace {

constexpr uint32_t kPieceSize = 4096;
constexpr ov_rc kWriteFault = 31;

// A file that is closed at the end, whatever comes of it.
struct ScopedFile {
  ScopedFile() { ov_file_init(&file); }
  ~ScopedFile() { ov_file_close(&file); }
  ScopedFile(const ScopedFile&) = delete;
  ScopedFile& operator=(const ScopedFile&) = delete;
  ov_file file;
};

ov_rc write_all(ov_file* file, const char* data, uint32_t length) {
  while (length > 0) {
    uint32_t written = 0;
    const ov_rc error = ov_file_write(file, data, length, &written);
    if (error != 0) return error;
    if (written == 0) return kWriteFault;  // it would go on like this for ever
    data += written;
    length -= written;
  }
  return 0;
}

}  // namespace

ov_rc ov_file_copy(const char* from, const char* to, int32_t mode) {
  ScopedFile source;
  ov_rc error = ov_file_openread(from, &source.file);
  if (error != 0) return error;
  ScopedFile target;
  error = ov_file_openwrite(to, &target.file, mode);
  if (error != 0) return error;
  ov_stat record;
  error = ov_file_fstat(&source.file, &record);
  if (error != 0) return error;
  for (;;) {
    char piece[kPieceSize];
    uint32_t count = 0;
    error = ov_file_read(&source.file, piece, sizeof piece, &count);
    if (error != 0 || count == 0) return error;
    error = write_all(&target.file, piece, count);
    if (error != 0) return error;
  }
}
