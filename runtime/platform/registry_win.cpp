// Values of the Windows registry: read, written, removed.
#include <windows.h>

#include <cwchar>
#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/owners_win.h"

using namespace ov;

namespace {

// What is read is looked for in the 64-bit view first; what is written goes there.
constexpr REGSAM kQueryIn64 = KEY_QUERY_VALUE | KEY_WOW64_64KEY;
constexpr REGSAM kQueryIn32 = KEY_QUERY_VALUE | KEY_WOW64_32KEY;
constexpr REGSAM kSetIn64 = KEY_SET_VALUE | KEY_WOW64_64KEY;

// A text of the system's codes, for log lines.
struct ErrorText {
  explicit ErrorText(ov_rc code) : text(ov_platform_errstr_inline(code, buffer, sizeof buffer)) {}
  char buffer[512];
  const char* text;
};

void log_failure(const char* call, const char* what, ov_rc error) {
  ov_log("%s() %s failed, errno:%d, err desc:%s", call, what, error, ErrorText(error).text);
}

// The two names of a value: its key and its own, as the caller gave them and as the system wants
// them.
struct ValueName {
  ValueName(const char* keyText, const char* nameText)
      : key(keyText), name(nameText), wide_key(keyText), wide_name(nameText) {}
  ov_rc error() const { return wide_key.error() != 0 ? wide_key.error() : wide_name.error(); }

  // Both answer their argument.
  ov_rc noteOfKey(ov_rc error) const {
    if (error == ERROR_FILE_NOT_FOUND) {
      OV_DEBUG("Registry subkey %s not found", key);
    } else if (error != 0) {
      log_failure("RegOpenKeyEx", key, error);
    }
    return error;
  }
  ov_rc noteOfValue(const char* call, ov_rc error) const {
    if (error == ERROR_FILE_NOT_FOUND) {
      OV_DEBUG("Registry value %s not found", name);
    } else if (error != 0) {
      log_failure(call, name, error);
    }
    return error;
  }

  const char* const key;
  const char* const name;
  const WideText wide_key;
  const WideText wide_name;
};

// Four bytes of UTF-8 for each byte of the value are enough for any text.
uint32_t enough_for(uint32_t bytes) {
  constexpr uint64_t kFactor = 4;
  const uint64_t needed = bytes * kFactor;
  return needed > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(needed);
}

// Asks for room for a value of `*length` bytes as text.
void require(uint32_t* length) {
  *length = enough_for(*length);
  OV_DEBUG("Buffer length of %lu required", static_cast<unsigned long>(*length));
}

// Opens the key and reads the value into `data`, which may be null, of `*length` bytes.
ov_rc query(void* hive, const char* key, const char* name, DWORD* type, void* data,
            uint32_t* length) {
  const ValueName value(key, name);
  if (value.error() != 0) return value.error();
  RegistryKey open;
  ov_rc error = open.open(static_cast<HKEY>(hive), value.wide_key.text(), kQueryIn64);
  if (error == ERROR_FILE_NOT_FOUND) {
    error = open.open(static_cast<HKEY>(hive), value.wide_key.text(), kQueryIn32);
  }
  if (value.noteOfKey(error) != 0) return error;
  DWORD bytes = data == nullptr ? 0 : *length;
  error = static_cast<ov_rc>(RegQueryValueExW(open.get(), value.wide_name.text(), nullptr, type,
                                              static_cast<BYTE*>(data), &bytes));
  if (error != ERROR_MORE_DATA && value.noteOfValue("RegQueryValueEx", error) != 0) return error;
  *length = static_cast<uint32_t>(bytes);
  if (error == 0) return 0;
  require(length);
  return OV_EBUFFER;
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

ov_rc set(void* hive, const char* key, const char* name, DWORD type, const void* data,
          DWORD bytes) {
  const ValueName value(key, name);
  if (value.error() != 0) return value.error();
  RegistryKey open;
  bool created = false;
  ov_rc error = open.create(static_cast<HKEY>(hive), value.wide_key.text(), kSetIn64, &created);
  if (error != 0) {
    log_failure("RegCreateKeyEx", key, error);
    return error;
  }
  if (created) OV_DEBUG("Created registry subkey %s", key);
  error = static_cast<ov_rc>(RegSetValueExW(open.get(), value.wide_name.text(), 0, type,
                                            static_cast<const BYTE*>(data), bytes));
  if (error != 0) log_failure("RegSetValueEx", name, error);
  return error;
}

}  // namespace

ov_rc ov_reg_get(void* hive, const char* key, const char* name, char* out, uint32_t* length) {
  if (length == nullptr) return OV_EINVAL;
  if (out == nullptr) {
    DWORD type = 0;
    const ov_rc error = query(hive, key, name, &type, nullptr, length);
    if (error == 0) require(length);
    return error;
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
  const ValueName value(key, name);
  if (value.error() != 0) return value.error();
  RegistryKey open;
  const ov_rc error = open.open(static_cast<HKEY>(hive), value.wide_key.text(), kSetIn64);
  if (value.noteOfKey(error) != 0) return error;
  return value.noteOfValue("RegDeleteValue",
                           static_cast<ov_rc>(RegDeleteValueW(open.get(), value.wide_name.text())));
}
