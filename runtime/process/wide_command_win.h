// A command line as wide text that the system may write into.
#pragma once

#include <windows.h>

#include <memory>
#include <new>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace ov {

// Converts in the constructor; on the stack at the usual lengths, else on the heap. `error` is not
// 0 when that failed.
class WideCommand {
 public:
  explicit WideCommand(const char* command) : text_(local_) {
    size_t bytes = sizeof local_;
    error_ = command == nullptr ? OV_EINVAL : ov_utf8_to_wchar(command, local_, &bytes);
    if (error_ != OV_ERANGE) return;
    heap_.reset(new (std::nothrow) wchar_t[kLargeSize / sizeof(wchar_t)]);
    bytes = kLargeSize;
    text_ = heap_.get();
    error_ = text_ == nullptr ? OV_ENOMEM : ov_utf8_to_wchar(command, text_, &bytes);
  }
  ov_rc error() const { return error_; }
  wchar_t* text() { return text_; }

 private:
  static constexpr size_t kSize = 8192;  // bytes
  static constexpr size_t kLargeSize = 65536;
  wchar_t local_[kSize / sizeof(wchar_t)];
  std::unique_ptr<wchar_t[]> heap_;
  wchar_t* text_;
  ov_rc error_;
};

}  // namespace ov
