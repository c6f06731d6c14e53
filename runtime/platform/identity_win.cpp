// What the system tells of this computer, of itself and of this process.
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>

#include <clocale>
#include <cwchar>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/paths/wide_path_win.h"
#include "runtime/platform/identity.h"
#include "runtime/platform/internal.h"
#include "runtime/platform/owners_win.h"

using namespace ov;

static_assert(sizeof(OSVERSIONINFOEXW) == 284);
static_assert(sizeof(wchar_t) == sizeof(uint16_t));

namespace {

// The lock of the domains that were looked up.
SRWLOCK domain_lock = SRWLOCK_INIT;

constexpr DWORD kOwnerSize = 1024;

}  // namespace

// The wide forms: those of the system's code page lose what it has no letter for.
ov_rc ov::computer_name(char* out, size_t size) {
  wchar_t name[kHostNameSize];
  DWORD characters = kHostNameSize;
  if (!GetComputerNameW(name, &characters)) return last_code();
  return ov_wchar_to_utf8(name, out, &size);
}

// Wine knows no domains, so only replaced calls have shown this.
ov_rc ov::flat_domain_name(const char* domain, char* out, size_t size) {
  wchar_t wide[kNameSize];
  size_t bytes = sizeof wide;
  if (const ov_rc error = ov_utf8_to_wchar(domain, wide, &bytes)) return error;
  DOMAIN_CONTROLLER_INFOW* raw = nullptr;
  const DWORD error = DsGetDcNameW(nullptr, wide, nullptr, nullptr, DS_RETURN_FLAT_NAME, &raw);
  const NetBuffer<DOMAIN_CONTROLLER_INFOW> info(raw);
  if (error != 0) return static_cast<ov_rc>(error);
  if (raw == nullptr || raw->DomainName == nullptr) return ERROR_NO_SUCH_DOMAIN;
  return ov_wchar_to_utf8(raw->DomainName, out, &size);
}

ov_rc ov::locale_name(char* out, size_t size) {
  const wchar_t* const name = _wsetlocale(LC_ALL, nullptr);
  return name == nullptr ? OV_ELOCALE : ov_wchar_to_utf8(name, out, &size);
}

ov_rc ov::drive_roots(uint16_t* out, size_t units) {
  const auto size = static_cast<DWORD>(units);
  const DWORD length = GetLogicalDriveStringsW(size, reinterpret_cast<wchar_t*>(out));
  if (length == 0) return last_code();
  return length >= size ? OV_EBUFFER : 0;
}

ov_rc ov::volume_space(const char* path, uint64_t* total, uint64_t* free) {
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  ULARGE_INTEGER whole = {};
  ULARGE_INTEGER unused = {};
  const ov_rc error = code_of(GetDiskFreeSpaceExW(wide.text, nullptr, &whole, &unused));
  *total = whole.QuadPart;
  *free = unused.QuadPart;
  return error;
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

void ov::acquire_domain_lock() {
  AcquireSRWLockExclusive(&domain_lock);
}

void ov::release_domain_lock() {
  ReleaseSRWLockExclusive(&domain_lock);
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
