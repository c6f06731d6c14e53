#include "core/plugin.h"

#include <windows.h>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

void Plugin::changeToHomeDirectory() {
  constexpr DWORD kLength = 260;
  wchar_t home[kLength];
  // A value that does not fit gives the length it needs, which must not be taken for an offset.
  const DWORD drive = GetEnvironmentVariableW(L"HOMEDRIVE", home, kLength);
  if (drive == 0 || drive >= kLength) {
    ov_log("Warning: GetEnvironmentVariable() failed for HOMEDRIVE (%lu)", GetLastError());
    return;
  }
  const DWORD path = GetEnvironmentVariableW(L"HOMEPATH", home + drive, kLength - drive);
  if (path == 0 || path >= kLength - drive) {
    ov_log("Warning: GetEnvironmentVariable() failed for HOMEPATH (%lu)", GetLastError());
    return;
  }
  if (!SetCurrentDirectoryW(home)) {
    ov_log("Warning: SetCurrentDirectory() failed (%lu)", GetLastError());
  }
}

void* Plugin::findSetLayeredWindowAttributes() {
  const HMODULE user32 = GetModuleHandleW(L"USER32.DLL");
  if (user32 == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(user32, "SetLayeredWindowAttributes"));
}

}  // namespace Vantrel::Web
