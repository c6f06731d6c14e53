// The bounded formatters.
#include <cstdio>

#include "runtime/ov_log.h"

namespace {

// The length of the whole text, or less than 0; what fits is in `dst`, terminated.
OV_PRINTF(3, 0)
int32_t format_bounded(char* dst, size_t size, const char* format, va_list arguments) {
  if (format == nullptr || (dst == nullptr && size > 0)) return -1;
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the callers have started the list
  const int length = std::vsnprintf(dst, size, format, arguments);
  if (length < 0 && size > 0) dst[size - 1] = 0;
  return length;
}

bool was_cut(int32_t length, size_t size) {
  return size > 0 && length >= 0 && static_cast<size_t>(length) >= size;
}

}  // namespace

int32_t ov_vsnprintf(char* dst, size_t size, const char* format, va_list arguments) {
  const int32_t length = format_bounded(dst, size, format, arguments);
  return was_cut(length, size) ? static_cast<int32_t>(size) : length;
}

int32_t ov_snprintf(char* dst, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t length = format_bounded(dst, size, format, arguments);
  va_end(arguments);
  if (!was_cut(length, size)) return length;
  OV_DEBUG("Call to snprintf() lead to a truncation");
  return static_cast<int32_t>(size - 1);
}
