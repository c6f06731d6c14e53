// What the sources of the registry share: wide texts, log lines, an open key.
#pragma once

#include <windows.h>

#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"

namespace ov {

// A text of the system's codes, for log lines.
struct ErrorText {
  explicit ErrorText(ov_rc code) : text(ov_platform_errstr_inline(code, buffer, sizeof buffer)) {}
  char buffer[512];
  const char* text;
};

inline void log_failure(const char* call, const char* what, ov_rc error) {
  ov_log("%s() %s failed, errno:%d, err desc:%s", call, what, error, ErrorText(error).text);
}

// UTF-8 text as wide text on the heap; null of `text()` with the reason in `error`.
class WideText {
 public:
  explicit WideText(const char* source) {
    size_t bytes = 0;
    error_ = source == nullptr ? OV_EINVAL : ov_utf8_to_wchar(source, nullptr, &bytes);
    if (error_ != OV_ERANGE) return;
    text_.reset(new (std::nothrow) wchar_t[bytes / sizeof(wchar_t)]);
    error_ = text_ == nullptr ? OV_ENOMEM : ov_utf8_to_wchar(source, text_.get(), &bytes);
  }
  ov_rc error() const { return error_; }
  const wchar_t* text() const { return text_.get(); }

 private:
  std::unique_ptr<wchar_t[]> text_;
  ov_rc error_;
};

// An open key, closed at the end.
class Key {
 public:
  Key() = default;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  // Opens for reading, in the 64-bit view and failing that in the 32-bit one.
  ov_rc openForQuery(HKEY hive, const wchar_t* path) {
    LSTATUS error = RegOpenKeyExW(hive, path, 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY, &key_);
    if (error == ERROR_FILE_NOT_FOUND) {
      error = RegOpenKeyExW(hive, path, 0, KEY_QUERY_VALUE | KEY_WOW64_32KEY, &key_);
    }
    return static_cast<ov_rc>(error);
  }
  // Opens for writing, in the 64-bit view.
  ov_rc openForSet(HKEY hive, const wchar_t* path) {
    return static_cast<ov_rc>(RegOpenKeyExW(hive, path, 0, KEY_SET_VALUE | KEY_WOW64_64KEY, &key_));
  }
  // The same, making the key if need be; `*created` tells.
  ov_rc createForSet(HKEY hive, const wchar_t* path, bool* created) {
    DWORD disposition = 0;
    const LSTATUS error =
        RegCreateKeyExW(hive, path, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE | KEY_WOW64_64KEY, nullptr, &key_, &disposition);
    *created = error == 0 && disposition == REG_CREATED_NEW_KEY;
    return static_cast<ov_rc>(error);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

}  // namespace ov
