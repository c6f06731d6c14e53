// Hexadecimal text.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"

// Written out, since a table that C programs read must be a plain array.
const uint8_t _ov_str_base16_lookup[256] = {
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 0,   1,   2,   3,   4,   5,   6,   7,   8,
    9,   255, 255, 255, 255, 255, 255, 255, 10,  11,  12,  13,  14,  15,  255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 10,  11,  12,  13,  14,  15,  255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255,
};

namespace {
constexpr char kDigits[] = "0123456789ABCDEF";
constexpr uint8_t kNoDigit = 255;
}  // namespace

ov_rc ov_str_buf_to_base16(const void* src, size_t len, char* dst, size_t dstSize) {
  if (dst == nullptr || (src == nullptr && len > 0)) return OV_EINVAL;
  // 2 * len + 1 > dstSize, without the overflow.
  if (dstSize == 0 || len > (dstSize - 1) / 2) return OV_EBUFFER;
  const auto* from = static_cast<const uint8_t*>(src);
  for (size_t i = 0; i < len; ++i) {
    *dst++ = kDigits[from[i] >> 4];
    *dst++ = kDigits[from[i] & 15];
  }
  *dst = 0;
  return 0;
}

ov_rc ov_str_base16_to_buf(const char* src, size_t len, void* dst, size_t dstSize, size_t* outLen) {
  if (src == nullptr || (dst == nullptr && dstSize > 0)) return OV_EINVAL;
  if (len == SIZE_MAX) len = std::strlen(src);
  if (len % 2 != 0) return OV_EINVAL;
  if (outLen != nullptr) *outLen = len / 2;
  if (dstSize < len / 2) return OV_EBUFFER;
  if (dst == nullptr) return 0;
  auto* to = static_cast<uint8_t*>(dst);
  uint8_t first = 0;
  for (size_t i = 0; i < len; ++i) {
    const uint8_t value = _ov_str_base16_lookup[static_cast<uint8_t>(src[i])];
    if (value == kNoDigit) {
      ov_err("Invalid char in hex string: '%c' (0x%02X)", src[i], static_cast<uint8_t>(src[i]));
      return OV_EINVAL;
    }
    if (i % 2 == 0) {
      first = value;
    } else {
      *to++ = static_cast<uint8_t>(first << 4 | value);
    }
  }
  return 0;
}
