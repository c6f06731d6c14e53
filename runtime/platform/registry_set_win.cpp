// Writing and removing values of the Windows registry.
#include <windows.h>

#include <cwchar>

#include "runtime/ov_registry.h"
#include "runtime/platform/registry_key_win.h"

using namespace ov;

namespace {

ov_rc set(void* hive, const char* key, const char* name, DWORD type, const void* data,
          DWORD bytes) {
  const WideText wideKey(key);
  if (wideKey.error() != 0) return wideKey.error();
  const WideText wideName(name);
  if (wideName.error() != 0) return wideName.error();
  Key open;
  bool created = false;
  ov_rc error = open.createForSet(static_cast<HKEY>(hive), wideKey.text(), &created);
  if (error != 0) {
    log_failure("RegCreateKeyEx", key, error);
    return error;
  }
  if (created) OV_DEBUG("Created registry subkey %s", key);
  error = static_cast<ov_rc>(
      RegSetValueExW(open.get(), wideName.text(), 0, type, static_cast<const BYTE*>(data), bytes));
  if (error != 0) log_failure("RegSetValueEx", name, error);
  return error;
}

}  // namespace

ov_rc ov_reg_set(void* hive, const char* key, const char* name, const char* value) {
  const WideText wide(value);
  if (wide.error() != 0) return wide.error();
  const size_t bytes = (wcslen(wide.text()) + 1) * sizeof(wchar_t);
  return set(hive, key, name, REG_SZ, wide.text(), static_cast<DWORD>(bytes));
}

ov_rc ov_reg_set_binary(void* hive, const char* key, const char* name, const void* data,
                        uint32_t length) {
  if (data == nullptr && length > 0) return OV_EINVAL;
  return set(hive, key, name, REG_BINARY, data, length);
}

ov_rc ov_reg_del(void* hive, const char* key, const char* name) {
  const WideText wideKey(key);
  if (wideKey.error() != 0) return wideKey.error();
  const WideText wideName(name);
  if (wideName.error() != 0) return wideName.error();
  Key open;
  ov_rc error = open.openForSet(static_cast<HKEY>(hive), wideKey.text());
  if (error == ERROR_FILE_NOT_FOUND) {
    OV_DEBUG("Registry subkey %s not found", key);
    return error;
  }
  if (error != 0) {
    log_failure("RegOpenKeyEx", key, error);
    return error;
  }
  error = static_cast<ov_rc>(RegDeleteValueW(open.get(), wideName.text()));
  if (error == ERROR_FILE_NOT_FOUND) {
    OV_DEBUG("Registry value %s not found", name);
  } else if (error != 0) {
    log_failure("RegDeleteValue", name, error);
  }
  return error;
}
