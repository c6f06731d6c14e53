// Conversion between UTF-8, UTF-16 and wide text. Wide text is UTF-16 where wchar_t has 16 bits (on
// Windows), else code points.
#include <bit>
#include <type_traits>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/utf8_sequence.h"

namespace {

constexpr uint32_t kLastCodePoint = 0x10ffff;
constexpr uint32_t kFirstSupplementary = 0x10000;

constexpr bool is_surrogate(uint32_t value) {
  return value >= 0xd800 && value <= 0xdfff;
}
constexpr bool is_high_surrogate(uint32_t value) {
  return value >= 0xd800 && value <= 0xdbff;
}
constexpr bool is_low_surrogate(uint32_t value) {
  return value >= 0xdc00 && value <= 0xdfff;
}

// Counts what it is given; the first pass of a conversion.
struct Counter {
  size_t count = 0;
  void put(uint32_t) { ++count; }
};

template <typename Unit>
struct Writer {
  Unit* dst;
  void put(uint32_t unit) { *dst++ = static_cast<Unit>(unit); }
};

// Puts the units of UTF-16, or the code point itself where the unit holds it.
template <typename Unit, typename Output>
void put_units(uint32_t code_point, Output& output) {
  if (sizeof(Unit) > 2 || code_point < kFirstSupplementary) return output.put(code_point);
  output.put(0xd800 + ((code_point - kFirstSupplementary) >> 10));
  output.put(0xdc00 + (code_point & 0x3ff));
}

template <typename Output>
void put_utf8(uint32_t code_point, Output& output) {
  if (code_point < 0x80) return output.put(code_point);
  if (code_point < 0x800) {
    output.put(0xc0 | code_point >> 6);
  } else {
    if (code_point < kFirstSupplementary) {
      output.put(0xe0 | code_point >> 12);
    } else {
      output.put(0xf0 | code_point >> 18);
      output.put(0x80 | (code_point >> 12 & 0x3f));
    }
    output.put(0x80 | (code_point >> 6 & 0x3f));
  }
  output.put(0x80 | (code_point & 0x3f));
}

// Converts with the terminator; false for ill-formed text.
template <typename Unit, typename Output>
bool utf8_to_units(const char* text, bool lenient, Output& output) {
  const auto* at = reinterpret_cast<const uint8_t*>(text);
  for (; *at != 0;) {
    const size_t length = ov::utf8_sequence_length(*at);
    if (ov::utf8_good_bytes(at, length, lenient) != length) return false;
    uint32_t code_point = length == 1 ? *at : *at & (0x7fu >> length);
    for (size_t i = 1; i < length; ++i) code_point = code_point << 6 | (at[i] & 0x3fu);
    put_units<Unit>(code_point, output);
    at += length;
  }
  output.put(0);
  return true;
}

// The unit's bits; wide characters are signed on some platforms.
template <typename Unit>
uint32_t value_of(Unit unit) {
  return std::bit_cast<std::make_unsigned_t<Unit>>(unit);
}

template <typename Unit, typename Output>
bool units_to_utf8(const Unit* text, bool lenient, Output& output) {
  for (; *text != 0; ++text) {
    uint32_t code_point = value_of(*text);
    if (sizeof(Unit) == 2 && is_high_surrogate(code_point) && is_low_surrogate(value_of(text[1]))) {
      const uint32_t low = value_of(*++text);
      code_point = kFirstSupplementary + ((code_point & 0x3ff) << 10) + (low & 0x3ff);
    }
    if (code_point > kLastCodePoint || (is_surrogate(code_point) && !lenient)) return false;
    put_utf8(code_point, output);
  }
  output.put(0);
  return true;
}

// Runs `pass` once to test and count and once to write.
template <typename Unit, typename Pass>
ov_rc convert(const void* src, Unit* dst, size_t* bytes, Pass pass) {
  if (!src || !bytes || (!dst && *bytes != 0)) return OV_EINVAL;
  Counter counter;
  if (!pass(counter)) return OV_EINVAL;
  const size_t available = *bytes;
  *bytes = counter.count * sizeof(Unit);
  if (*bytes > available) return OV_ERANGE;
  Writer<Unit> writer{dst};
  pass(writer);
  return 0;
}

template <typename Unit>
ov_rc from_utf8(const char* src, int32_t flags, Unit* dst, size_t* bytes) {
  return convert(src, dst, bytes, [src, flags](auto& output) {
    return utf8_to_units<Unit>(src, flags != 0, output);
  });
}

template <typename Unit>
ov_rc to_utf8(const Unit* src, int32_t flags, char* dst, size_t* bytes) {
  return convert(src, dst, bytes,
                 [src, flags](auto& output) { return units_to_utf8(src, flags != 0, output); });
}

}  // namespace

size_t ov_utf16_len(const uint16_t* text) {
  size_t length = 0;
  while (text != nullptr && text[length] != 0) ++length;
  return length;
}

ov_rc ov_utf8_to_utf16(const char* src, int32_t flags, uint16_t* dst, size_t* bytes) {
  return from_utf8(src, flags, dst, bytes);
}

ov_rc ov_utf16_to_utf8(const uint16_t* src, int32_t flags, char* dst, size_t* bytes) {
  return to_utf8(src, flags, dst, bytes);
}

ov_rc ov_utf8_to_wchar(const char* src, wchar_t* dst, size_t* bytes) {
  return from_utf8(src, 0, dst, bytes);
}

ov_rc ov_wchar_to_utf8(const wchar_t* src, char* dst, size_t* bytes) {
  return to_utf8(src, 0, dst, bytes);
}
