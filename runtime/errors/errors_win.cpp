#include "runtime/errors/platform.h"

#include <windows.h>

#include <memory>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace ov {
namespace {

struct FreeLocal {
  void operator()(wchar_t* text) const { LocalFree(text); }
};

constexpr DWORD kMessageFlags =
    FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
// The least number of characters to allocate.
constexpr DWORD kMessageRoom = 4096;

}  // namespace

uint32_t last_error() {
  return GetLastError();
}

void set_last_error(uint32_t error) {
  SetLastError(error);
}

ov_rc system_message(int32_t code, char* buffer, size_t size) {
  wchar_t* text = nullptr;
  // With ALLOCATE_BUFFER the address of the pointer goes where a buffer is declared.
  const DWORD length = FormatMessageW(kMessageFlags, nullptr, static_cast<DWORD>(code),
                                      MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<wchar_t*>(&text), kMessageRoom, nullptr);
  const ov_rc error = length == 0 ? last_code() : 0;
  const std::unique_ptr<wchar_t, FreeLocal> owner(text);
  if (error != 0) return error;
  return ov_wchar_to_utf8(text, buffer, &size);
}

}  // namespace ov
