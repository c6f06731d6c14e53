// Opening, reading, writing and removing files.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

namespace {

// Open flags.
constexpr uint32_t kRead = 0x001;
constexpr uint32_t kWrite = 0x002;
constexpr uint32_t kAppend = 0x004;
constexpr uint32_t kShareRead = 0x010;
constexpr uint32_t kShareWrite = 0x020;
constexpr uint32_t kCreate = 0x100;
constexpr uint32_t kTruncate = 0x200;

constexpr uint32_t kOpenRead = kRead | kShareRead;
constexpr uint32_t kOpenWrite = kWrite | kShareRead | kShareWrite | kCreate | kTruncate;
constexpr uint32_t kOpenBoth = kRead | kWrite | kShareRead | kShareWrite;
constexpr uint32_t kOpenAppend = kWrite | kAppend | kShareRead | kShareWrite | kCreate;

// Waits in milliseconds before the retries of a read that found no system resources.
constexpr DWORD kReadDelays[] = {0, 0, 0, 0, 0, 10, 10, 10, 10, 10};

ov_rc open_file(const char* path, ov_file* file, uint32_t flags) {
  if (path == nullptr || file == nullptr) return OV_EINVAL;
  *file = kClosedHandle;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  DWORD access = 0;
  if (flags & kRead) access |= GENERIC_READ;
  if (flags & kWrite) access |= GENERIC_WRITE;
  if (flags & kAppend) access = FILE_APPEND_DATA;
  DWORD share = 0;
  if (flags & kShareRead) share |= FILE_SHARE_READ;
  if (flags & kShareWrite) share |= FILE_SHARE_WRITE;
  const DWORD disposition = flags & kCreate ? OPEN_ALWAYS : OPEN_EXISTING;
  *file =
      CreateFileW(wide.text, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (*file == kClosedHandle) return last_code();
  if ((flags & kTruncate) && !SetEndOfFile(*file)) {
    const ov_rc error = last_code();
    CloseHandle(*file);
    *file = kClosedHandle;
    return error;
  }
  return 0;
}

ov_rc move_to(ov_file* file, int64_t offset, DWORD whence, const char* name) {
  LARGE_INTEGER distance;
  distance.QuadPart = offset;
  const ov_rc error = code_of(SetFilePointerEx(*file, distance, nullptr, whence));
  if (error != 0) ov_log("%s: SetFilePointerEx failed, error=%d", name, error);
  return error;
}

}  // namespace

ov_rc ov_file_openread(const char* path, ov_file* file) {
  return open_file(path, file, kOpenRead);
}

ov_rc ov_file_openwrite(const char* path, ov_file* file, int32_t) {
  return open_file(path, file, kOpenWrite);
}

ov_rc ov_file_openrw(const char* path, ov_file* file, int32_t mode) {
  return open_file(path, file, mode == OV_OPEN_EXISTING ? kOpenBoth : kOpenBoth | kCreate);
}

ov_rc ov_file_openappend(const char* path, ov_file* file, int32_t) {
  return open_file(path, file, kOpenAppend);
}

ov_rc ov_file_close(ov_file* file) {
  if (file == nullptr) return OV_EINVAL;
  if (*file == kClosedHandle) return 0;
  if (!CloseHandle(*file)) return last_code();
  *file = kClosedHandle;
  return 0;
}

ov_rc ov_file_read(ov_file* file, void* buffer, uint32_t length, uint32_t* read) {
  if (file == nullptr || buffer == nullptr || read == nullptr) return OV_EINVAL;
  *read = 0;
  for (size_t tries = 0;; ++tries) {
    DWORD count = 0;
    if (ReadFile(*file, buffer, length, &count, nullptr)) {
      *read += static_cast<uint32_t>(count);
      return 0;
    }
    const ov_rc error = last_code();
    if (error == ERROR_BROKEN_PIPE) return 0;
    if (error != ERROR_NO_SYSTEM_RESOURCES || tries == sizeof kReadDelays / sizeof *kReadDelays) {
      ov_err("ov_fileread: ReadFile failed. error=%d", error);
      return error;
    }
    ov_err("ov_fileread: resource error %d, retrying after %d ms", error,
           static_cast<int>(kReadDelays[tries]));
    if (kReadDelays[tries] > 0) Sleep(kReadDelays[tries]);
  }
}

ov_rc ov_file_write(ov_file* file, const void* buffer, uint32_t length, uint32_t* written) {
  if (file == nullptr || buffer == nullptr || written == nullptr) return OV_EINVAL;
  *written = 0;
  DWORD count = 0;
  if (!WriteFile(*file, buffer, length, &count, nullptr)) return last_code();
  *written = static_cast<uint32_t>(count);
  return 0;
}

ov_rc ov_file_pwrite(ov_file* file, const void* buffer, uint32_t length, int64_t offset,
                     uint32_t* written) {
  if (file == nullptr || buffer == nullptr || written == nullptr) return OV_EINVAL;
  *written = 0;
  const ov_rc error = move_to(file, offset, FILE_BEGIN, "ov_file_seek");
  return error != 0 ? error : ov_file_write(file, buffer, length, written);
}

ov_rc ov_file_seek(ov_file* file, int64_t offset, int32_t whence) {
  if (file == nullptr) return OV_EINVAL;
  return move_to(file, offset, static_cast<DWORD>(whence), "ov_file_seek");
}

ov_rc ov_file_truncate(ov_file* file, int64_t size) {
  if (file == nullptr) return OV_EINVAL;
  ov_rc error = move_to(file, size, FILE_BEGIN, "ov_filetruncate");
  if (error != 0) return error;
  error = code_of(SetEndOfFile(*file));
  if (error != 0) ov_log("ov_filetruncate: SetFileEnd failed, error=%d", error);
  return error;
}

ov_rc ov_file_flush(ov_file* file) {
  return file == nullptr ? OV_EINVAL : code_of(FlushFileBuffers(*file));
}

ov_rc ov_file_delete(const char* path) {
  const WidePath wide(path);
  return wide.error != 0 ? wide.error : code_of(DeleteFileW(wide.text));
}

ov_rc ov_file_rename(const char* from, const char* to) {
  const WidePath source(from);
  if (source.error != 0) return source.error;
  const WidePath target(to);
  if (target.error != 0) return target.error;
  return code_of(MoveFileExW(source.text, target.text, MOVEFILE_REPLACE_EXISTING));
}

ov_rc ov_file_hardlink(const char* existing, const char* link) {
  const WidePath from(existing);
  if (from.error != 0) return from.error;
  const WidePath to(link);
  if (to.error != 0) return to.error;
  return code_of(CreateHardLinkW(to.text, from.text, nullptr));
}
