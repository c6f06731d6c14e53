// Owners of what calls of the system hand out: each gives it back at its end. Local objects of one
// thread.
#pragma once

#include <windows.h>
#include <lm.h>

#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace ov {

// What the network functions allocate.
struct NetFree {
  void operator()(void* buffer) const { NetApiBufferFree(buffer); }
};
template <typename T>
using NetBuffer = std::unique_ptr<T, NetFree>;

// A text that the security functions allocate.
struct LocalTextFree {
  void operator()(wchar_t* text) const { LocalFree(text); }
};
using LocalText = std::unique_ptr<wchar_t, LocalTextFree>;

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

// An open key of the registry.
class RegistryKey {
 public:
  RegistryKey() = default;
  ~RegistryKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  // Opens once, with KEY_ rights and the view to look at.
  ov_rc open(HKEY hive, const wchar_t* path, REGSAM rights) {
    return static_cast<ov_rc>(RegOpenKeyExW(hive, path, 0, rights, &key_));
  }
  // The same, making the key if need be; `*created` tells.
  ov_rc create(HKEY hive, const wchar_t* path, REGSAM rights, bool* created) {
    DWORD disposition = 0;
    const LSTATUS error = RegCreateKeyExW(hive, path, 0, nullptr, REG_OPTION_NON_VOLATILE, rights,
                                          nullptr, &key_, &disposition);
    *created = error == 0 && disposition == REG_CREATED_NEW_KEY;
    return static_cast<ov_rc>(error);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

}  // namespace ov
