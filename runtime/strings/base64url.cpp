// Base64 in the alphabet for URLs, without padding.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/base64.h"

namespace {
constexpr ov::Base64Alphabet kForUrls('-', '_');
}  // namespace

ov_rc ov_str_buf_to_base64url(const void* src, size_t len, char* dst, size_t dstSize) {
  if (dst == nullptr || (src == nullptr && len > 0) || (len == 0 && dstSize == 0)) return OV_EINVAL;
  if (!ov::base64_fits(len, dstSize)) return OV_EBUFFER;
  *ov::base64_encode(kForUrls, static_cast<const uint8_t*>(src), len, dst) = 0;
  return 0;
}

ov_rc ov_str_base64url_to_buf(const char* src, size_t len, void* dst, size_t dstSize,
                              size_t* outLen) {
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  if (len == SIZE_MAX) len = std::strlen(src);
  if (len % 4 == 1) return OV_EINVAL;
  if (len > 0 && dstSize <= (len + 2) / 4 * 3) return OV_EBUFFER;
  auto* out = static_cast<uint8_t*>(dst);
  const uint8_t* const begin = out;
  uint32_t bits = 0;
  const size_t run = ov::base64_decode_run(kForUrls, src, len, out);
  out += run / 4 * 3;
  for (size_t i = run; i < len; ++i) {
    const uint8_t value = kForUrls.value(src[i]);
    if (value == ov::kBase64None) return OV_EINVAL;
    bits = bits << 6 | value;
    // The symbols of a group bring 6, 12, 18 and 24 bits: a byte is complete from the second on.
    const size_t place = i % 4;
    if (place > 0) *out++ = static_cast<uint8_t>(bits >> (6 - 2 * place));
  }
  const auto written = static_cast<size_t>(out - begin);
  if (written < dstSize) *out = 0;
  if (outLen != nullptr) *outLen = written;
  return 0;
}
