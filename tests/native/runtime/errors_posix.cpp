#include "runtime/error_platform.h"

namespace ov {
namespace {
thread_local uint32_t thread_last_error = 0;
}  // namespace

uint32_t last_error() {
  return thread_last_error;
}

void set_last_error(uint32_t error) {
  thread_last_error = error;
}

}  // namespace ov
