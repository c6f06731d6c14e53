// Base64 in the standard alphabet.
#include "runtime/strings/base64.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"

namespace ov {

char* base64_encode(const Base64Alphabet& alphabet, const uint8_t* src, size_t len, char* dst) {
  const size_t done = base64_can_shuffle() ? base64_encode_by_shuffle(alphabet, src, len, dst) : 0;
  return base64_encode_by_table(alphabet, src + done, len - done, dst + done / 3 * 4);
}

char* base64_encode_by_table(const Base64Alphabet& alphabet, const uint8_t* src, size_t len,
                             char* dst) {
  const auto put = [&dst](const std::array<char, 2>& pair) {
    std::memcpy(dst, pair.data(), pair.size());
    dst += pair.size();
  };
  for (; len >= 3; len -= 3, src += 3) {
    const auto bits = static_cast<uint32_t>(src[0] << 16 | src[1] << 8 | src[2]);
    put(alphabet.pairs[bits >> 12]);
    put(alphabet.pairs[bits & 0xfff]);
  }
  if (len == 1) put(alphabet.pairs[static_cast<size_t>(src[0] << 4)]);
  if (len == 2) {
    const auto bits = static_cast<uint32_t>(src[0] << 10 | src[1] << 2);
    put(alphabet.pairs[bits >> 6]);
    *dst++ = alphabet.pairs[bits & 0x3f][1];
  }
  return dst;
}

}  // namespace ov

namespace {

constexpr ov::Base64Alphabet kStandard('+', '/');
constexpr char kPadding = '=';

bool is_skipped(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool in_alphabet(char c) {
  return kStandard.value(c) != ov::kBase64None;
}

size_t decoder_length(const char* src, size_t len) {
  return len == SIZE_MAX ? std::strlen(src) : len;
}

// The destination of a decoder.
struct Output {
  uint8_t* begin;
  uint8_t* cursor;
  uint8_t* end;

  Output(void* dst, size_t size)
      : begin(static_cast<uint8_t*>(dst)), cursor(begin), end(begin + size) {}

  ov_rc finish(size_t* outLen) const {
    if (cursor < end) *cursor = 0;
    if (outLen != nullptr) *outLen = static_cast<size_t>(cursor - begin);
    return 0;
  }
};

// Decodes groups of four up to the end or to a group that begins with padding. With `skipping`,
// blanks and line ends between the symbols are passed over.
ov_rc decode_groups(const char* src, const char* end, bool skipping, Output out, size_t* outLen) {
  char four[4];
  size_t filled = 0;
  for (; src != end; ++src) {
    if (skipping && is_skipped(*src)) continue;
    four[filled++] = *src;
    if (filled < sizeof four) continue;
    filled = 0;
    if (four[0] == kPadding) break;
    if (const ov_rc error = ov_str_base64_chars_to_buf(four, &out.cursor, out.end)) return error;
  }
  return out.finish(outLen);
}

}  // namespace

ov_rc ov_str_buf_to_base64(const void* src, size_t len, char* dst, size_t dstSize) {
  if (dst == nullptr || (src == nullptr && len > 0) || (len == 0 && dstSize == 0)) return OV_EINVAL;
  if (!ov::base64_fits(len, dstSize)) return OV_EBUFFER;
  char* end = ov::base64_encode(kStandard, static_cast<const uint8_t*>(src), len, dst);
  while ((end - dst) % 4 != 0) *end++ = kPadding;
  *end = 0;
  return 0;
}

ov_rc ov_str_base64_to_buf(const char* src, size_t len, void* dst, size_t dstSize, size_t* outLen) {
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  const char* end = src + decoder_length(src, len);
  size_t count = 0;
  for (const char* at = src; at != end; ++at) {
    if (is_skipped(*at)) continue;
    if (!in_alphabet(*at) && *at != kPadding) {
      ov_err("ov_str_base64_to_buf(): illegal input char %c", *at);
      return OV_EINVAL;
    }
    ++count;
  }
  if (count % 4 != 0) return OV_EINVAL;
  if (dstSize <= count / 4 * 3) return OV_EBUFFER;
  return decode_groups(src, end, true, Output(dst, dstSize), outLen);
}

ov_rc ov_str_mime_base64_to_buf(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen) {
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  const char* end = src + decoder_length(src, len);
  Output out(dst, dstSize);
  for (;;) {
    char four[4];
    ov_str_base64_next_chars(&src, end, four);
    if (four[0] == kPadding) return out.finish(outLen);
    if (const ov_rc error = ov_str_base64_chars_to_buf(four, &out.cursor, out.end)) return error;
  }
}

ov_rc ov_str_base64_to_buf_impl(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen, int32_t lenient) {
  if (lenient != 0) return ov_str_mime_base64_to_buf(src, len, dst, dstSize, outLen);
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  const size_t length = decoder_length(src, len);
  if (length % 4 != 0) return OV_EINVAL;
  if (dstSize <= length / 4 * 3) return OV_EBUFFER;
  return decode_groups(src, src + length, false, Output(dst, dstSize), outLen);
}

ov_rc ov_str_base64_chars_to_buf(const char four[4], uint8_t** cursor, uint8_t* end) {
  if (four == nullptr || cursor == nullptr || *cursor == nullptr || end == nullptr)
    return OV_EINVAL;
  if (four[0] == kPadding) return 0;
  const size_t bytes = four[2] == kPadding ? 1 : four[3] == kPadding ? 2 : 3;
  uint32_t bits = 0;
  for (size_t i = 0; i < 4; ++i) {
    const bool read = i <= bytes;
    if (read && !in_alphabet(four[i])) return OV_EINVAL;
    bits = bits << 6 | (read ? kStandard.value(four[i]) : 0u);
  }
  if (*cursor > end || static_cast<size_t>(end - *cursor) < bytes) return OV_EBUFFER;
  for (size_t i = 0; i < bytes; ++i) *(*cursor)++ = static_cast<uint8_t>(bits >> (16 - 8 * i));
  return 0;
}

char ov_str_base64_next_char(const char** src, const char* end) {
  if (src == nullptr || *src == nullptr) return kPadding;
  while (*src < end && **src != 0) {
    const char c = *(*src)++;
    if (in_alphabet(c)) return c;
  }
  return kPadding;
}

void ov_str_base64_next_chars(const char** src, const char* end, char four[4]) {
  for (size_t i = 0; four != nullptr && i < 4; ++i) four[i] = ov_str_base64_next_char(src, end);
}

int32_t ov_str_base64_valid_char(char c) {
  return c == 0 || in_alphabet(c) ? 1 : 0;
}
