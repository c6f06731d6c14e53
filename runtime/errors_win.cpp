#include "runtime/error_platform.h"

#include <windows.h>

namespace ov {

uint32_t last_error() {
  return GetLastError();
}

void set_last_error(uint32_t error) {
  SetLastError(error);
}

}  // namespace ov
