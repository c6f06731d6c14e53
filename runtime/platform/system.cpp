// The machine, its system and the products on it, as texts.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"

const char OV_WINREG_ZEPT[] = "SOFTWARE\\Orvane\\ZEPT";
const char OV_WINREG_MRWSRV[] = "SOFTWARE\\Orvane\\Marrow Server";
const char OV_WINREG_TLINK[] = "SOFTWARE\\Orvane\\Trellis-Link";
const char OV_WINREG_DIR[] = "InstallDir";
const char OV_WINREG_LOG[] = "LogDir";

using namespace ov;

namespace {

constexpr char kBuildVersion[] = "UNSET";
constexpr char kBuildSystem[] = "Windows";
// Of a locale's name that has a part for each category.
constexpr size_t kLocaleNameSize = 4096;

enum State { kUnknown, kBeingWritten, kKnown };

// This computer's name, remembered once it is known: whoever moves the state from kUnknown writes
// it, others use what they read themselves.
std::atomic<State> state{kUnknown};
char known[kHostNameSize];

constexpr const char* kProductKeys[] = {OV_WINREG_ZEPT, OV_WINREG_MRWSRV, OV_WINREG_TLINK};

ov_rc install_directory(const char* key, char* out, size_t size) {
  uint32_t length = static_cast<uint32_t>(std::min<size_t>(size, UINT32_MAX));
  return ov_reg_get(OV_REG_LOCAL_MACHINE, key, OV_WINREG_DIR, out, &length);
}

}  // namespace

ov_rc ov_platform_build_ver(char* out) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, kBuildVersion, sizeof kBuildVersion);
}

ov_rc ov_platform_build_os(char* out) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, kBuildSystem, sizeof kBuildSystem);
}

// The platform has names for neither, so this is the one function of both.
ov_rc ov_platform_uname(int32_t, char* out, size_t size) {
  if (size == 0) return 0;
  if (out == nullptr) return OV_EINVAL;
  out[0] = '\0';
  return 0;
}

extern "C" ov_rc ov_platform_gname(int32_t, char*, size_t)
    __attribute__((alias("ov_platform_uname")));

ov_rc ov_platform_os(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  SystemVersion version;
  const ov_rc error = system_version(&version);
  if (error != 0) return error;
  return ov_str_printf_to(out, size, nullptr, "Microsoft Windows %d.%d %s",
                          static_cast<int>(version.major), static_cast<int>(version.minor),
                          version.service_pack);
}

ov_rc ov_platform_getlocale(ov_locale* locale) {
  if (locale == nullptr) return OV_EINVAL;
  char name[kLocaleNameSize];
  const ov_rc error = locale_name(name, sizeof name);
  if (error != 0) return error;
  *locale = {};
  // Widths are those of the record's fields without their terminators.
  static_assert(sizeof locale->language == 129 && sizeof locale->country == 129 &&
                sizeof locale->codeset == 129);
  const int parts = sscanf(name, "%128[^_]_%128[^.].%128[^@]", locale->language, locale->country,
                           locale->codeset);
  static_cast<void>(parts);  // what is missing stays empty
  return 0;
}

ov_rc ov_platform_hostname(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  if (state.load(std::memory_order_acquire) == kKnown) return ov_str_ncpy(out, known, size);
  char name[kHostNameSize];
  if (computer_name(name, sizeof name) != 0) return OV_EINVAL;
  State expected = kUnknown;
  if (state.compare_exchange_strong(expected, kBeingWritten)) {
    memcpy(known, name, sizeof known);
    state.store(kKnown, std::memory_order_release);
  }
  return ov_str_ncpy(out, name, size);
}

ov_rc ov_platform_root(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  ov_rc error = OV_EINVAL;
  for (const char* const key : kProductKeys) {
    error = install_directory(key, out, size);
    ov_log("Key \"%s\" %sfound in registry", key, error == 0 ? "" : "not ");
    if (error == 0) break;
  }
  return error;
}

ov_rc ov_platform_winpath(char* out, size_t size) {
  if (out == nullptr) return OV_EINVAL;
  const ov_rc error = install_directory(OV_WINREG_ZEPT, out, size);
  if (error == 0) ov_file_tounixpath(out);
  return error;
}
