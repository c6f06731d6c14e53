// Dynamic libraries.
#include <windows.h>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_process.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

void ov_library_init(ov_library* library) {
  if (library != nullptr) *library = nullptr;
}

int32_t ov_library_is_open(const ov_library* library) {
  return library != nullptr && *library != nullptr ? 1 : 0;
}

ov_rc ov_library_open(ov_library* library, const char* path) {
  if (library == nullptr) return OV_EINVAL;
  *library = nullptr;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  *library = LoadLibraryW(wide.text);
  return *library != nullptr ? 0 : last_code();
}

ov_rc ov_library_close(ov_library* library) {
  if (library == nullptr) return OV_EINVAL;
  if (*library == nullptr) return 0;
  const ov_rc error = code_of(FreeLibrary(static_cast<HMODULE>(*library)));
  *library = nullptr;
  if (error != 0) {
    char text[512];
    ov_err("%s, errno:%d, err desc:%s", "Lib unloading failed", error,
           ov_platform_errstr_inline(error, text, sizeof text));
  }
  return error;
}

ov_rc ov_library_symbol(ov_library* library, const char* name, void** out) {
  if (library == nullptr || name == nullptr || out == nullptr) return OV_EINVAL;
  // With no library the system would look in the program itself.
  *out = *library == nullptr
             ? nullptr
             : reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(*library), name));
  if (*out != nullptr) return 0;
  const ov_rc error = *library == nullptr ? OV_EBADF : last_code();
  ov_err("Loading lib symbol [%s] failed", name);
  return error;
}
