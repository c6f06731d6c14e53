// The home directory of any user: from the user's account, else from the profile on this machine.
#include <windows.h>
#include <dsgetdc.h>
#include <lm.h>
#include <sddl.h>

#include <cwchar>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/owners_win.h"

using namespace ov;

namespace {

constexpr size_t kUserSize = 1024;
constexpr wchar_t kProfiles[] = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProfileList\)";

ov_rc to_utf8(const wchar_t* wide, char* out, size_t size) {
  return ov_wchar_to_utf8(wide, out, &size);
}

// Writes the text of the account's security identifier.
ov_rc sid_text(const wchar_t* server, const wchar_t* name, wchar_t* out, size_t size) {
  alignas(SID) unsigned char sid[SECURITY_MAX_SID_SIZE];
  DWORD sidSize = sizeof sid;
  wchar_t domain[kUserSize];
  DWORD domainSize = kUserSize;
  SID_NAME_USE use;
  if (!LookupAccountNameW(server, name, sid, &sidSize, domain, &domainSize, &use)) {
    return last_code();
  }
  wchar_t* raw = nullptr;
  if (!ConvertSidToStringSidW(sid, &raw)) return last_code();
  const LocalText text(raw);
  if (wcslen(raw) >= size) return OV_ERANGE;
  wcscpy(out, raw);
  return 0;
}

// Reads the profile's path as it stands in the registry, terminated.
ov_rc profile_value(const wchar_t* key, wchar_t* out, size_t size) {
  RegistryKey open;
  if (const ov_rc error = open.open(HKEY_LOCAL_MACHINE, key, KEY_QUERY_VALUE)) return error;
  auto bytes = static_cast<DWORD>((size - 1) * sizeof(wchar_t));
  const LSTATUS error = RegQueryValueExW(open.get(), L"ProfileImagePath", nullptr, nullptr,
                                         reinterpret_cast<BYTE*>(out), &bytes);
  if (error == 0) out[bytes / sizeof(wchar_t)] = L'\0';
  return static_cast<ov_rc>(error);
}

ov_rc profile_directory(const wchar_t* server, const wchar_t* name, char* out, size_t size) {
  constexpr size_t kPrefix = sizeof kProfiles / sizeof *kProfiles - 1;
  wchar_t key[OV_PATH_SIZE];
  wcscpy(key, kProfiles);
  ov_rc error = sid_text(server, name, key + kPrefix, OV_PATH_SIZE - kPrefix);
  if (error != 0) return error;
  wchar_t value[OV_PATH_SIZE];
  error = profile_value(key, value, OV_PATH_SIZE);
  if (error != 0) return error;
  wchar_t expanded[OV_PATH_SIZE];
  const DWORD length = ExpandEnvironmentStringsW(value, expanded, OV_PATH_SIZE);
  if (length == 0) return last_code();
  return length > OV_PATH_SIZE ? OV_ENOSPC : to_utf8(expanded, out, size);
}

ov_rc home_directory(const wchar_t* server, const wchar_t* name, char* out, size_t size) {
  BYTE* raw = nullptr;
  const NET_API_STATUS error = NetUserGetInfo(server, name, 3, &raw);
  const NetBuffer<BYTE> info(raw);
  if (error != 0) return static_cast<ov_rc>(error);
  const wchar_t* const home = reinterpret_cast<const USER_INFO_3*>(raw)->usri3_home_dir;
  if (home != nullptr && home[0] != L'\0') return to_utf8(home, out, size);
  return profile_directory(server, name, out, size);
}

}  // namespace

ov_rc ov_path_user_home_dir(const char* user, char* out, size_t size) {
  if (user == nullptr || out == nullptr) return OV_EINVAL;
  wchar_t name[kUserSize];
  size_t bytes = sizeof name;
  const ov_rc error = ov_utf8_to_wchar(user, name, &bytes);
  if (error != 0) return error;
  wchar_t* const separator = wcschr(name, L'\\');
  if (separator == nullptr || separator == name) return home_directory(nullptr, name, out, size);
  *separator = L'\0';
  DOMAIN_CONTROLLER_INFOW* raw = nullptr;
  const DWORD found = DsGetDcNameW(nullptr, name, nullptr, nullptr, 0, &raw);
  *separator = L'\\';
  if (found != 0) return home_directory(nullptr, name, out, size);
  const NetBuffer<DOMAIN_CONTROLLER_INFOW> info(raw);
  return home_directory(raw->DomainControllerName, separator + 1, out, size);
}
