// Tests and repairs of UTF-8 text.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/utf8_ascii.h"
#include "runtime/strings/utf8_sequence.h"

namespace {

constexpr char kReplacementCharacter[] = "\xef\xbf\xbd";

const uint8_t* as_bytes(const char* text) {
  return reinterpret_cast<const uint8_t*>(text);
}

// Length of the well-formed sequence at the start of the bytes, which is not ASCII, or 0. Stops at
// the first byte at fault, so a text with a terminator may pass any `available`. The lengths are
// told by branches, since a processor reads on behind a guessed branch but waits for a looked-up
// length.
size_t well_formed_sequence(const uint8_t* text, size_t available) {
  const uint8_t first = text[0];
  if (first < 0xc2 || first > 0xf4 || available < 2) return 0;
  if (!ov::is_utf8_second_byte(first, text[1], false)) return 0;
  if (first < 0xe0) return 2;
  if (available < 3 || !ov::is_utf8_continuation(text[2])) return 0;
  if (first < 0xf0) return 3;
  if (available < 4 || !ov::is_utf8_continuation(text[3])) return 0;
  return 4;
}

// What there is of a text of at most `max` bytes.
struct WellFormed {
  size_t length;  // of its well-formed start
  bool whole;     // nothing follows that start
};

WellFormed well_formed_start(const uint8_t* text, size_t max) {
  size_t at = 0;
  for (;;) {
    at += ov::utf8_ascii_run(text + at, max - at);
    if (at == max || text[at] == 0) return {at, true};
    // A terminator inside a sequence is a fault in it, so nothing behind one is read.
    while (at < max && text[at] >= 0x80) {
      const size_t sequence = well_formed_sequence(text + at, max - at);
      if (sequence == 0) return {at, false};
      at += sequence;
    }
  }
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
  return text != nullptr ? std::strlen(text) : 0;
}

int32_t ov_utf8_is_valid(const char* text, size_t max) {
  return text != nullptr && well_formed_start(as_bytes(text), max).whole ? 1 : 0;
}

size_t ov_utf8_well_formed_length(const char* text, size_t max) {
  return text != nullptr ? well_formed_start(as_bytes(text), max).length : 0;
}

ov_rc ov_utf8_trim_trailing_partial(char* text, size_t* length) {
  if (text == nullptr) return OV_EINVAL;
  const size_t end = length != nullptr ? *length : std::strlen(text);
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
  if (length != nullptr) *length = first;
  return 0;
}

const char* ov_utf8c_find_invalid_byte(const char* text, size_t len) {
  if (text == nullptr || len == 0) return nullptr;
  const size_t good = ov::utf8_good_bytes(as_bytes(text), len, false);
  const bool whole = good > 0 && good == ov::utf8_sequence_length(as_bytes(text)[0]);
  return whole ? nullptr : text + good;
}

ov_rc ov_utf8_replace_invalid_sequence(char* dst, const char* src, size_t* dstSize,
                                       const char* replacement, size_t replacementLen) {
  if (dst == nullptr || src == nullptr || dstSize == nullptr || *dstSize == 0) return OV_EINVAL;
  if (replacement == nullptr) {
    replacement = kReplacementCharacter;
    replacementLen = sizeof kReplacementCharacter - 1;
  }
  Writer writer{dst, *dstSize};
  ov_rc result = 0;
  const char* const end = src + std::strlen(src);
  while (src < end) {
    const char* const fault = ov_utf8c_find_invalid_byte(src, static_cast<size_t>(end - src));
    const size_t length = ov::utf8_sequence_length(as_bytes(src)[0]);
    if (fault != nullptr ? !writer.put(replacement, replacementLen) : !writer.put(src, length)) {
      result = OV_EBUFFER;
      break;
    }
    if (fault != nullptr) result = OV_EILLUTFSTR;
    src = fault == nullptr ? src + length : fault < end ? fault + 1 : end;
  }
  dst[writer.used] = 0;
  *dstSize = writer.used;
  return result;
}
