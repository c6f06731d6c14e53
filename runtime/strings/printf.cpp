// Formatting into fixed and into growing buffers, and copying into growing ones.
#include <cstdlib>
#include <cstring>

#include "runtime/errors/last_code.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"

namespace {

constexpr size_t kFirstCapacity = 1024;

// Makes room for `needed` bytes by doubling the capacity; on failure nothing changes.
ov_rc reserve(char** buffer, size_t* capacity, size_t needed) {
  size_t size = *capacity == 0 ? kFirstCapacity : *capacity;
  while (size < needed) {
    if (size > SIZE_MAX / 2) return OV_ENOMEM;
    size *= 2;
  }
  if (*buffer != nullptr && size == *capacity) return 0;
  char* grown = static_cast<char*>(std::realloc(*buffer, size));
  if (grown == nullptr) return OV_ENOMEM;
  if (*buffer == nullptr) std::memset(grown, 0, size);
  *buffer = grown;
  *capacity = size;
  return 0;
}

}  // namespace

ov_rc ov_str_vprintf_to(char* dst, size_t dstSize, size_t* pos, const char* format,
                        va_list arguments) {
  const size_t start = pos != nullptr ? *pos : 0;
  if (dst == nullptr) return OV_EINVAL;
  if (format == nullptr || start >= dstSize) {
    if (dstSize > 0) dst[0] = 0;
    return OV_EINVAL;
  }
  const size_t room = dstSize - start;
  const int32_t length = ov_vsnprintf(dst + start, room, format, arguments);
  if (length < 0) {
    const ov_rc error = ov::last_code();
    dst[start] = 0;
    return error;
  }
  size_t end = start + static_cast<size_t>(length);
  const bool cut = end == dstSize;
  if (cut) {
    end = dstSize - 1;
    ov_utf8_trim_trailing_partial(dst, &end);
  }
  if (pos != nullptr) *pos = end;
  return cut ? OV_EBUFFER : 0;
}

ov_rc ov_str_printf_to(char* dst, size_t dstSize, size_t* pos, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const ov_rc result = ov_str_vprintf_to(dst, dstSize, pos, format, arguments);
  va_end(arguments);
  return result;
}

ov_rc ov_str_vprintf_to_resize(char** buffer, size_t* capacity, size_t* pos, const char* format,
                               va_list arguments) {
  if (buffer == nullptr || capacity == nullptr) return OV_EINVAL;
  if (const ov_rc error = reserve(buffer, capacity, 1)) return error;
  const size_t start = pos != nullptr ? *pos : 0;
  if (format != nullptr && start < *capacity) {
    va_list measured;
    va_copy(measured, arguments);
    const int32_t length = ov_vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    const size_t needed = start + static_cast<size_t>(length < 0 ? 0 : length) + 1;
    if (const ov_rc error = reserve(buffer, capacity, needed)) return error;
  }
  return ov_str_vprintf_to(*buffer, *capacity, pos, format, arguments);
}

ov_rc ov_str_printf_to_resize(char** buffer, size_t* capacity, size_t* pos, const char* format,
                              ...) {
  va_list arguments;
  va_start(arguments, format);
  const ov_rc result = ov_str_vprintf_to_resize(buffer, capacity, pos, format, arguments);
  va_end(arguments);
  return result;
}

ov_rc ov_str_nto_resize(char** buffer, const char* src, size_t srcMax, size_t* capacity,
                        size_t* pos) {
  if (buffer == nullptr || capacity == nullptr) return OV_EINVAL;
  if (const ov_rc error = reserve(buffer, capacity, 1)) return error;
  const size_t start = pos != nullptr ? *pos : 0;
  if (src != nullptr && start < *capacity) {
    const size_t length = ov_str_nlen(src, srcMax);
    if (length > SIZE_MAX - start - 1) return OV_ENOMEM;
    if (const ov_rc error = reserve(buffer, capacity, start + length + 1)) return error;
  }
  return ov_str_nto(*buffer, src, srcMax, *capacity, pos);
}

ov_rc ov_str_to_resize(char** buffer, const char* src, size_t* capacity, size_t* pos) {
  return ov_str_nto_resize(buffer, src, SIZE_MAX, capacity, pos);
}
