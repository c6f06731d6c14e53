// Tests and repairs of UTF-8 text.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/utf8_sequence.h"

namespace {

constexpr char replacement_character[] = "\xef\xbf\xbd";

const uint8_t* as_bytes(const char* text) {
  return reinterpret_cast<const uint8_t*>(text);
}

// Length of the well-formed sequence at the start of the bytes, or 0.
size_t well_formed_sequence(const uint8_t* text, size_t available) {
  const size_t good = ov::utf8_good_bytes(text, available, false);
  return good > 0 && good == ov::utf8_sequence_length(text[0]) ? good : 0;
}

// Number of ASCII bytes at the start, eight at a time; may stop short of the last seven.
size_t ascii_run(const uint8_t* text, size_t length) {
  constexpr uint64_t high_bits = 0x8080808080808080;
  size_t run = 0;
  for (uint64_t bytes = 0; length - run >= sizeof bytes; run += sizeof bytes) {
    std::memcpy(&bytes, text + run, sizeof bytes);
    if (bytes & high_bits) break;
  }
  return run;
}

size_t well_formed_bytes(const uint8_t* bytes, size_t length) {
  size_t at = 0;
  while (at < length) {
    at += ascii_run(bytes + at, length - at);
    if (at == length) break;
    const size_t sequence = well_formed_sequence(bytes + at, length - at);
    if (sequence == 0) break;
    at += sequence;
  }
  return at;
}

// Writes pieces into a buffer, keeping room for the terminator.
struct Writer {
  char* dst;
  size_t size;
  size_t used = 0;

  bool put(const char* piece, size_t length) {
    if (length > size - used - 1) return false;
    std::memcpy(dst + used, piece, length);
    used += length;
    return true;
  }
};

}  // namespace

size_t ov_utf8_len(const char* text) {
  return text ? std::strlen(text) : 0;
}

int32_t ov_utf8_is_valid(const char* text, size_t max) {
  if (!text) return 0;
  const size_t length = ov_str_nlen(text, max);
  return well_formed_bytes(as_bytes(text), length) == length ? 1 : 0;
}

size_t ov_utf8_well_formed_length(const char* text, size_t max) {
  return well_formed_bytes(as_bytes(text), ov_str_nlen(text, max));
}

ov_rc ov_utf8_trim_trailing_partial(char* text, size_t* length) {
  if (!text) return OV_EINVAL;
  const size_t end = length ? *length : std::strlen(text);
  const uint8_t* const bytes = as_bytes(text);
  if (end == 0 || bytes[end - 1] < 0x80) return 0;
  size_t first = end - 1;
  while (bytes[first] < 0xc0) {
    if (bytes[first] < 0x80 || first == 0) return OV_EINVAL;
    --first;
  }
  // A first byte at the very end is cut whatever length it tells.
  if (first < end - 1 && ov::utf8_sequence_length(bytes[first]) == end - first) return 0;
  text[first] = 0;
  if (length) *length = first;
  return 0;
}

const char* ov_utf8c_find_invalid_byte(const char* text, size_t len) {
  if (!text || len == 0) return nullptr;
  const size_t good = ov::utf8_good_bytes(as_bytes(text), len, false);
  const bool whole = good > 0 && good == ov::utf8_sequence_length(as_bytes(text)[0]);
  return whole ? nullptr : text + good;
}

ov_rc ov_utf8_replace_invalid_sequence(char* dst, const char* src, size_t* dstSize,
                                       const char* replacement, size_t replacementLen) {
  if (!dst || !src || !dstSize || *dstSize == 0) return OV_EINVAL;
  if (!replacement) {
    replacement = replacement_character;
    replacementLen = sizeof replacement_character - 1;
  }
  Writer writer{dst, *dstSize};
  ov_rc result = 0;
  const char* const end = src + std::strlen(src);
  while (src < end) {
    const char* const fault = ov_utf8c_find_invalid_byte(src, static_cast<size_t>(end - src));
    const size_t length = ov::utf8_sequence_length(as_bytes(src)[0]);
    if (fault ? !writer.put(replacement, replacementLen) : !writer.put(src, length)) {
      result = OV_EBUFFER;
      break;
    }
    if (fault) result = OV_EILLUTFSTR;
    src = !fault ? src + length : fault < end ? fault + 1 : end;
  }
  dst[writer.used] = 0;
  *dstSize = writer.used;
  return result;
}
