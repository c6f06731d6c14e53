// Copying into buffers of fixed size.
#include <algorithm>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/ascii.h"

namespace {

// How much of a source text a warning shows.
constexpr size_t kShownLength = 256;

uint32_t shown(size_t number) {
  return static_cast<uint32_t>(number);
}

void refuse_copy(char* dst, const char* src, size_t srcMax, size_t dstSize, size_t start) {
  const char* text = src != nullptr ? src : "(null)";
  const int length =
      static_cast<int>(std::min(src != nullptr ? srcMax : kShownLength, kShownLength));
  // The precision also keeps a source with no terminator from being read beyond srcMax.
  ov_log("Warning: ov_str_to failure, args %p %p %u %u '%.*s'", static_cast<void*>(dst),
         static_cast<const void*>(src), shown(dstSize), shown(start), length, text);
  if (dst != nullptr && dstSize > 0) dst[0] = 0;
}

// Copies `length` bytes as far as they fit; start < dstSize.
ov_rc copy_text(char* dst, const char* src, size_t length, size_t dstSize, size_t start,
                size_t* pos) {
  const size_t taken = std::min(length, dstSize - start - 1);
  size_t end = start + taken;
  std::memmove(dst + start, src, taken);
  dst[end] = 0;
  if (taken < length) ov_utf8_trim_trailing_partial(dst, &end);
  if (pos != nullptr) *pos = end;
  return taken < length ? OV_EBUFFER : 0;
}

}  // namespace

ov_rc ov_str_nto(char* dst, const char* src, size_t srcMax, size_t dstSize, size_t* pos) {
  const size_t start = pos != nullptr ? *pos : 0;
  if (dst == nullptr || src == nullptr || start >= dstSize) {
    refuse_copy(dst, src, srcMax, dstSize, start);
    return OV_EINVAL;
  }
  return copy_text(dst, src, ov_str_nlen(src, srcMax), dstSize, start, pos);
}

ov_rc ov_str_to(char* dst, const char* src, size_t dstSize, size_t* pos) {
  return ov_str_nto(dst, src, SIZE_MAX, dstSize, pos);
}

ov_rc ov_trimmed_str_to(char* dst, const char* src, size_t dstSize, size_t* pos) {
  const size_t start = pos != nullptr ? *pos : 0;
  if (dst == nullptr || src == nullptr || start >= dstSize) {
    ov_log("ov_trimmed_str_to failure, args %p %p %u %u %p", static_cast<void*>(dst),
           static_cast<const void*>(src), shown(dstSize), shown(start), static_cast<void*>(pos));
    if (dst != nullptr && dstSize > 0) dst[0] = 0;
    return OV_EINVAL;
  }
  while (ov::is_space(*src)) ++src;
  size_t length = std::strlen(src);
  while (length > 0 && ov::is_space(src[length - 1])) --length;
  return copy_text(dst, src, length, dstSize, start, pos);
}

ov_rc ov_str_ncpy(char* dst, const char* src, size_t dstSize) {
  return ov_str_to(dst, src != nullptr ? src : "", dstSize, nullptr);
}

ov_rc ov_str_ncat(char* dst, const char* src, size_t dstSize) {
  if (dst == nullptr || src == nullptr) return OV_EINVAL;
  if (*src == 0) return 0;
  size_t end = ov_str_nlen(dst, dstSize);
  if (end >= dstSize) return OV_EBUFFER;
  return ov_str_to(dst, src, dstSize, &end);
}
