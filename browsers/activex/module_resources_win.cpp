#include "browsers/activex/module_resources_win.h"

#include <stdexcept>

namespace Vantrel::Web::ActiveX {

namespace {

// The longest path that the system knows.
constexpr size_t kLongestPath = 32768;

}  // namespace

HINSTANCE moduleInstance() {
  HMODULE module = nullptr;
  // Without a reference: whoever runs this code holds one.
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&moduleInstance), &module);
  return module;
}

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetModuleFileNameW(moduleInstance(), path.data(), static_cast<DWORD>(path.size()));
    if (length != 0 && length < path.size()) {
      path.resize(length);
      return path;
    }
    // A path that did not fit fills the room.
    if (length == 0 || path.size() >= kLongestPath) {
      throw std::runtime_error("the library's own path is not known");
    }
    path.resize(path.size() * 2);
  }
}

std::wstring moduleText(unsigned number) {
  const wchar_t* text = nullptr;
  // With no room given, the call tells where the text itself is, which has no terminator.
  const int length = LoadStringW(moduleInstance(), number, reinterpret_cast<wchar_t*>(&text), 0);
  return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

}  // namespace Vantrel::Web::ActiveX
