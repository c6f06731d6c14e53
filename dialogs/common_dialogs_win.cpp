#include "dialogs/common_dialogs_win.h"

#include "threads/system_exception.h"

namespace Vantrel::Web::CommonDialogs {

namespace {

// One of the libraries that the system finds before all others, whatever folder we run in.
constexpr wchar_t kLibrary[] = L"comdlg32.dll";

template <typename Function>
Function find(const char* name) {
  auto* const module = LoadLibraryW(kLibrary);
  const auto found = module == nullptr ? nullptr : GetProcAddress(module, name);
  if (found == nullptr) {
    const auto code = static_cast<int32_t>(GetLastError());
    throw SystemException(describeSystemError("Failed to find the common dialogs: ", code));
  }
  return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

}  // namespace

bool openFileName(OPENFILENAMEW* dialog) {
  return find<decltype(&GetOpenFileNameW)>("GetOpenFileNameW")(dialog) != FALSE;
}

bool saveFileName(OPENFILENAMEW* dialog) {
  return find<decltype(&GetSaveFileNameW)>("GetSaveFileNameW")(dialog) != FALSE;
}

DWORD extendedError() {
  return find<decltype(&CommDlgExtendedError)>("CommDlgExtendedError")();
}

}  // namespace Vantrel::Web::CommonDialogs
