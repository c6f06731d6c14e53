#include "text/wide_text.h"

#include <stdexcept>

#include "runtime/ov_strings.h"
#include "text/error_texts.h"

namespace Vantrel::Web {

namespace {
constexpr ov_rc kBufferTooSmall = 122;

std::string conversionError(ov_rc code) {
  return std::string(kErrorConvertingEncoding) + " (" + std::to_string(code) + ")";
}
}  // namespace

std::string toUtf8(const std::wstring& wide) {
  size_t bytes = 0;
  std::string text;
  ov_rc code = ov_wchar_to_utf8(wide.c_str(), nullptr, &bytes);
  if (code == kBufferTooSmall) {
    text.resize(bytes);
    code = ov_wchar_to_utf8(wide.c_str(), text.data(), &bytes);
  }
  if (code != 0) throw std::runtime_error(conversionError(code));
  text.resize(bytes - 1);  // the terminator
  return text;
}

std::wstring toWide(const std::string& text) {
  size_t bytes = 0;
  std::wstring wide;
  ov_rc code = ov_utf8_to_wchar(text.c_str(), nullptr, &bytes);
  if (code == kBufferTooSmall) {
    wide.resize(bytes / sizeof(wchar_t));
    code = ov_utf8_to_wchar(text.c_str(), wide.data(), &bytes);
  }
  if (code != 0) throw std::runtime_error(conversionError(code) + ": " + text);
  wide.resize(bytes / sizeof(wchar_t) - 1);  // the terminator
  return wide;
}

}  // namespace Vantrel::Web
