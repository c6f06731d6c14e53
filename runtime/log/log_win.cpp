#include "runtime/log/platform.h"

#include <windows.h>

#include <io.h>

namespace ov {
namespace {
SRWLOCK log_lock = SRWLOCK_INIT;
constexpr int kStandardError = 2;
}  // namespace

uint32_t process_id() {
  return GetCurrentProcessId();
}

// Past the C library, which would put another carriage return in front of each line end while the
// descriptor is in text mode, and the mode is the host program's. A program without a standard
// error has a handle there that no write accepts.
void write_standard_error(std::string_view text) {
  auto* const handle = reinterpret_cast<HANDLE>(_get_osfhandle(kStandardError));
  DWORD written = 0;
  WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

ov_rc open_file_size(void* file, uint64_t* size) {
  LARGE_INTEGER value = {};
  // A failure for which the system has no number counts as an empty file.
  if (!GetFileSizeEx(file, &value)) return static_cast<ov_rc>(GetLastError());
  *size = static_cast<uint64_t>(value.QuadPart);
  return 0;
}

void acquire_log_lock() {
  AcquireSRWLockExclusive(&log_lock);
}

bool try_acquire_log_lock() {
  return TryAcquireSRWLockExclusive(&log_lock) != 0;
}

void release_log_lock() {
  ReleaseSRWLockExclusive(&log_lock);
}

}  // namespace ov
