// For tests: the last error, which a call must leave to its caller as it was, and who the caller
// is.
#pragma once

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>

#include "runtime/errors/platform.h"
#endif

#include <cstdint>

namespace ov {

#ifdef _WIN32
inline void set_caller_error(uint32_t code) {
  SetLastError(code);
}
inline uint32_t caller_error() {
  return GetLastError();
}
inline uint32_t this_process() {
  return GetCurrentProcessId();
}
#else
inline void set_caller_error(uint32_t code) {
  set_last_error(code);
}
inline uint32_t caller_error() {
  return last_error();
}
inline uint32_t this_process() {
  return static_cast<uint32_t>(getpid());
}
#endif

}  // namespace ov
