// Reading values of the Windows registry.
#include <windows.h>

#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/registry_key_win.h"

using namespace ov;

namespace {

// Opens the key and reads the value into `data`, which may be null, of `*length` bytes.
ov_rc query(void* hive, const char* key, const char* name, DWORD* type, void* data,
            uint32_t* length) {
  const WideText wideKey(key);
  if (wideKey.error() != 0) return wideKey.error();
  const WideText wideName(name);
  if (wideName.error() != 0) return wideName.error();
  Key open;
  ov_rc error = open.openForQuery(static_cast<HKEY>(hive), wideKey.text());
  if (error == ERROR_FILE_NOT_FOUND) {
    OV_DEBUG("Registry subkey %s not found", key);
    return error;
  }
  if (error != 0) {
    log_failure("RegOpenKeyEx", key, error);
    return error;
  }
  DWORD bytes = data == nullptr ? 0 : *length;
  error = static_cast<ov_rc>(RegQueryValueExW(open.get(), wideName.text(), nullptr, type,
                                              static_cast<BYTE*>(data), &bytes));
  if (error == ERROR_FILE_NOT_FOUND) {
    OV_DEBUG("Registry value %s not found", name);
    return error;
  }
  if (error != 0 && error != ERROR_MORE_DATA) {
    log_failure("RegQueryValueEx", name, error);
    return error;
  }
  *length = static_cast<uint32_t>(bytes);
  if (error == 0 && data != nullptr) return 0;
  // Four bytes of UTF-8 for each byte of the value are enough for any text.
  constexpr uint64_t kFactor = 4;
  const uint64_t needed = *length * kFactor;
  *length = needed > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(needed);
  OV_DEBUG("Buffer length of %lu required", static_cast<unsigned long>(*length));
  return error == 0 ? 0 : OV_EBUFFER;
}

// Converts a wide text of the registry into `out`, and sets `*length` to its size in UTF-8.
ov_rc deliver(const wchar_t* wide, char* out, uint32_t size, uint32_t* length) {
  size_t bytes = 0;
  ov_rc error = ov_wchar_to_utf8(wide, nullptr, &bytes);
  std::unique_ptr<char[]> text;
  if (error == OV_ERANGE) {
    text.reset(new (std::nothrow) char[bytes]);
    error = text == nullptr ? OV_ENOMEM : ov_wchar_to_utf8(wide, text.get(), &bytes);
  }
  if (error != 0) {
    ov_log("ov_wchar_to_utf8() failed, errno:%d, err desc:%s", error, ErrorText(error).text);
    return error;
  }
  *length = static_cast<uint32_t>(bytes);
  error = ov_str_ncpy(out, text.get(), size);
  if (error != 0) {
    ov_log("ov_str_ncpy() failed, errno:%d, err desc:%s", error, ErrorText(error).text);
  }
  return error;
}

ov_rc get_text(void* hive, const char* key, const char* name, char* out, uint32_t* length) {
  const uint32_t size = *length;
  // The text need not be terminated, nor its size be even: room for two zero characters behind it.
  const size_t characters = size_t{size} / sizeof(wchar_t) + 3;
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[characters]());
  if (wide == nullptr) return OV_ENOMEM;
  DWORD type = 0;
  const ov_rc error = query(hive, key, name, &type, wide.get(), length);
  if (error != 0) return error;
  if (type != REG_SZ && type != REG_EXPAND_SZ) {
    ov_log("RegQueryValueEx() returned unexpected type: %lul", static_cast<unsigned long>(type));
    return OV_EINVAL;
  }
  wide[*length / sizeof(wchar_t)] = L'\0';
  return deliver(wide.get(), out, size, length);
}

}  // namespace

ov_rc ov_reg_get(void* hive, const char* key, const char* name, char* out, uint32_t* length) {
  if (length == nullptr) return OV_EINVAL;
  if (out == nullptr) {
    DWORD type = 0;
    return query(hive, key, name, &type, nullptr, length);
  }
  const uint32_t size = *length;
  const ov_rc error = get_text(hive, key, name, out, length);
  if (error != 0 && size > 0) out[0] = '\0';
  return error;
}

ov_rc ov_reg_get_binary(void* hive, const char* key, const char* name, void* out,
                        uint32_t* length) {
  if (length == nullptr) return OV_EINVAL;
  DWORD type = 0;
  return query(hive, key, name, &type, out, length);
}
