// Base64 in the standard alphabet.
#include "runtime/strings/base64.h"

#include <algorithm>
#include <cstring>
#include <optional>

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

size_t base64_decode_run(const Base64Alphabet& alphabet, const char* src, size_t len,
                         uint8_t* dst) {
  const size_t done = base64_can_shuffle() ? base64_decode_by_shuffle(alphabet, src, len, dst) : 0;
  return done + base64_decode_by_table(alphabet, src + done, len - done, dst + done / 4 * 3);
}

size_t base64_decode_by_table(const Base64Alphabet& alphabet, const char* src, size_t len,
                              uint8_t* dst) {
  size_t done = 0;
  for (; len - done >= 4; done += 4, dst += 3) {
    const uint32_t first = alphabet.value(src[done]);
    const uint32_t second = alphabet.value(src[done + 1]);
    const uint32_t third = alphabet.value(src[done + 2]);
    const uint32_t fourth = alphabet.value(src[done + 3]);
    // The value for "none" has bits that no other has.
    if ((first | second | third | fourth) > kBase64Last) break;
    dst[0] = static_cast<uint8_t>(first << 2 | second >> 4);
    dst[1] = static_cast<uint8_t>(second << 4 | third >> 2);
    dst[2] = static_cast<uint8_t>(third << 6 | fourth);
  }
  return done;
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

// Fetches the next four characters, without blanks and line ends if `skipping`; padding stands for
// what the text no longer has.
void fetch_group(const char** src, const char* end, bool skipping, char (&four)[4]) {
  size_t filled = 0;
  for (; *src != end && filled < sizeof four; ++*src) {
    if (!skipping || !is_skipped(**src)) four[filled++] = **src;
  }
  while (filled < sizeof four) four[filled++] = kPadding;
}

// Decodes the whole groups of symbols that follow each other, as far as there is room for them.
void decode_run(const char** src, const char* end, Output* out) {
  const size_t room = static_cast<size_t>(out->end - out->cursor) / 3 * 4;
  const size_t length = std::min(static_cast<size_t>(end - *src), room);
  const size_t done = ov::base64_decode_run(kStandard, *src, length, out->cursor);
  *src += done;
  out->cursor += done / 4 * 3;
}

// Decodes groups of four up to the end or to a group that begins with padding. `fetch` takes the
// next group where it is not one of four symbols in a row.
template <typename Fetch>
ov_rc decode_groups(const char* src, const char* end, Output out, size_t* outLen, Fetch fetch) {
  for (;;) {
    decode_run(&src, end, &out);
    char four[4];
    fetch(&src, end, four);
    if (four[0] == kPadding) return out.finish(outLen);
    if (const ov_rc error = ov_str_base64_chars_to_buf(four, &out.cursor, out.end)) return error;
  }
}

// Number of characters but blanks and line ends; none, with a log line, for a text with others that
// are no symbols and no padding.
std::optional<size_t> count_symbols(const char* src, const char* end) {
  size_t count = 0;
  while (src != end) {
    const size_t plain = ov::base64_symbol_blocks(kStandard, src, static_cast<size_t>(end - src));
    src += plain;
    count += plain;
    for (size_t i = 0; i < ov::kBase64Block && src != end; ++i, ++src) {
      if (is_skipped(*src)) continue;
      if (!in_alphabet(*src) && *src != kPadding) {
        ov_err("ov_str_base64_to_buf(): illegal input char %c", *src);
        return std::nullopt;
      }
      ++count;
    }
  }
  return count;
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
  const std::optional<size_t> count = count_symbols(src, end);
  if (!count || *count % 4 != 0) return OV_EINVAL;
  if (dstSize <= *count / 4 * 3) return OV_EBUFFER;
  return decode_groups(
      src, end, Output(dst, dstSize), outLen,
      [](const char** at, const char* last, char(&four)[4]) { fetch_group(at, last, true, four); });
}

ov_rc ov_str_mime_base64_to_buf(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen) {
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  const char* end = src + decoder_length(src, len);
  return decode_groups(src, end, Output(dst, dstSize), outLen, &ov_str_base64_next_chars);
}

ov_rc ov_str_base64_to_buf_impl(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen, int32_t lenient) {
  if (lenient != 0) return ov_str_mime_base64_to_buf(src, len, dst, dstSize, outLen);
  if (src == nullptr || dst == nullptr) return OV_EINVAL;
  const size_t length = decoder_length(src, len);
  if (length % 4 != 0) return OV_EINVAL;
  if (dstSize <= length / 4 * 3) return OV_EBUFFER;
  return decode_groups(
      src, src + length, Output(dst, dstSize), outLen,
      [](const char** at, const char* end, char(&four)[4]) { fetch_group(at, end, false, four); });
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
