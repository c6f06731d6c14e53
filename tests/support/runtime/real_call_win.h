// For tests that replace calls of the system: the call that was replaced.
#pragma once

#include <windows.h>

namespace ov {

template <typename Function>
Function real_call(const wchar_t* library, const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(library), name)));
}

}  // namespace ov
