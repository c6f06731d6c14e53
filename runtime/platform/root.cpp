// Where the products are installed.
#include <algorithm>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_platform.h"
#include "runtime/ov_registry.h"

namespace {

constexpr const char* kProductKeys[] = {OV_WINREG_ZEPT, OV_WINREG_MRWSRV, OV_WINREG_TLINK};

ov_rc install_directory(const char* key, char* out, size_t size) {
  uint32_t length = static_cast<uint32_t>(std::min<size_t>(size, UINT32_MAX));
  return ov_reg_get(OV_REG_LOCAL_MACHINE, key, OV_WINREG_DIR, out, &length);
}

}  // namespace

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
