// Texts about the system, and names in its registry.
#include <cstdio>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

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

ov_rc write_no_name(char* out, size_t size) {
  if (size == 0) return 0;
  if (out == nullptr) return OV_EINVAL;
  out[0] = '\0';
  return 0;
}

}  // namespace

ov_rc ov_platform_build_ver(char* out) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, kBuildVersion, sizeof kBuildVersion);
}

ov_rc ov_platform_build_os(char* out) {
  return out == nullptr ? OV_EINVAL : ov_str_ncpy(out, kBuildSystem, sizeof kBuildSystem);
}

ov_rc ov_platform_uname(int32_t, char* out, size_t size) {
  return write_no_name(out, size);
}

ov_rc ov_platform_gname(int32_t, char* out, size_t size) {
  return write_no_name(out, size);
}

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
