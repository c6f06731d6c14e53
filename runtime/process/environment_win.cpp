// Variables of this process.
#include <windows.h>

#include <memory>
#include <new>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/errors/asserts.h"

namespace {

// In characters: the longest name, and the longest value that the system keeps, with terminators.
constexpr size_t kNameSize = 8192;
constexpr size_t kLongestValue = 32768;

}  // namespace

ov_rc ov_process_getenv(const char* name, char* buffer, size_t size) {
  if (!ov::assert_not_null(name) || buffer == nullptr || size == 0) return OV_EINVAL;
  const size_t wideSize = size < kLongestValue ? size : kLongestValue;
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[kNameSize + wideSize]);
  if (wide == nullptr) return OV_ENOMEM;
  size_t nameBytes = kNameSize * sizeof(wchar_t);
  const ov_rc error = ov_utf8_to_wchar(name, wide.get(), &nameBytes);
  if (error != 0) return error;
  wchar_t* const value = wide.get() + kNameSize;
  const DWORD length = GetEnvironmentVariableW(wide.get(), value, static_cast<DWORD>(wideSize));
  if (length == 0) return OV_EINVAL;
  if (length >= wideSize) return OV_EBUFFER;
  return ov_wchar_to_utf8(value, buffer, &size);
}

ov_rc ov_process_setenv(const char* name, const char* value) {
  if (name == nullptr) return OV_EINVAL;
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[3 * kNameSize]);
  if (wide == nullptr) return OV_ENOMEM;
  size_t bytes = kNameSize * sizeof(wchar_t);
  ov_rc error = ov_utf8_to_wchar(name, wide.get(), &bytes);
  if (error != 0) return error;
  wchar_t* const wideValue = wide.get() + kNameSize;
  bytes = 2 * kNameSize * sizeof(wchar_t);
  if (value != nullptr) error = ov_utf8_to_wchar(value, wideValue, &bytes);
  if (error != 0) return error;
  return ov::code_of(SetEnvironmentVariableW(wide.get(), value == nullptr ? nullptr : wideValue));
}
