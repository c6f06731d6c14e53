// What the system tells of itself and of this process.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

using namespace ov;

static_assert(sizeof(OSVERSIONINFOEXW) == 284);

namespace {

// The lock of the domains that were looked up.
SRWLOCK domain_lock = SRWLOCK_INIT;

constexpr DWORD kOwnerSize = 1024;

}  // namespace

void ov::acquire_domain_lock() {
  AcquireSRWLockExclusive(&domain_lock);
}

void ov::release_domain_lock() {
  ReleaseSRWLockExclusive(&domain_lock);
}

ov_rc ov::system_version(SystemVersion* version) {
  OSVERSIONINFOEXW info = {};
  info.dwOSVersionInfoSize = sizeof info;
  if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) return last_code();
  version->major = static_cast<uint32_t>(info.dwMajorVersion);
  version->minor = static_cast<uint32_t>(info.dwMinorVersion);
  size_t bytes = sizeof version->service_pack;
  return ov_wchar_to_utf8(info.szCSDVersion, version->service_pack, &bytes);
}

ov_rc ov_platform_thread_init(void) {
  return code_of(SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL));
}

ov_rc ov_platform_get_process_uname(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  wchar_t name[kOwnerSize];
  DWORD characters = kOwnerSize;
  if (!GetUserNameW(name, &characters)) return last_code();
  return ov_wchar_to_utf8(name, out, &size);
}
