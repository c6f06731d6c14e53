// Conversion between UTF-8, UTF-16 and wide text. Wide text is UTF-16 where wchar_t has 16 bits (on
// Windows), else code points.
#include <bit>
#include <type_traits>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/utf8_ascii.h"
#include "runtime/strings/utf8_sequence.h"
#include "runtime/strings/utf_blocks.h"

namespace {

// Counts what it is given; the first pass of a conversion.
struct Counter {
  size_t count = 0;
  void put(uint32_t) { ++count; }
};

template <typename Unit>
struct Writer {
  Unit* dst;
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): where there is room, there is a buffer
  void put(uint32_t unit) { *dst++ = static_cast<Unit>(unit); }
};

// Puts the units of UTF-16, or the code point itself where the unit holds it.
template <typename Unit, typename Output>
void put_units(uint32_t code_point, Output& output) {
  if (sizeof(Unit) > 2 || code_point < ov::kFirstSupplementary) return output.put(code_point);
  output.put(ov::high_surrogate(code_point));
  output.put(ov::low_surrogate(code_point));
}

template <typename Output>
void put_utf8(uint32_t code_point, Output& output) {
  if (code_point < 0x80) return output.put(code_point);
  if (code_point < 0x800) {
    output.put(0xc0 | code_point >> 6);
  } else {
    if (code_point < ov::kFirstSupplementary) {
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

// Wide characters that hold a code point each.
template <typename Unit, typename Output>
bool code_points_to_utf8(const Unit* text, bool lenient, Output& output) {
  for (; *text != 0; ++text) {
    const uint32_t code_point = value_of(*text);
    const bool ill = code_point > ov::kLastCodePoint || (ov::is_surrogate(code_point) && !lenient);
    if (ill) return false;
    put_utf8(code_point, output);
  }
  output.put(0);
  return true;
}

// Takes the need in and tells whether there is as much room.
ov_rc take_room(size_t need, size_t* bytes) {
  const size_t available = *bytes;
  *bytes = need;
  return need > available ? OV_ERANGE : 0;
}

// Runs `pass` once to test and count and once to write.
template <typename Unit, typename Pass>
ov_rc convert(Unit* dst, size_t* bytes, Pass pass) {
  Counter counter;
  if (!pass(counter)) return OV_EINVAL;
  if (const ov_rc error = take_room(counter.count * sizeof(Unit), bytes)) return error;
  Writer<Unit> writer{dst};
  pass(writer);
  return 0;
}

ov_rc utf8_to_utf16_by_blocks(const char* src, bool lenient, ov::Utf16Unit* dst, size_t* bytes) {
  const auto* const text = reinterpret_cast<const uint8_t*>(src);
  const size_t length = ov::text_length(text);
  const auto [good, units] = ov::utf8_measure(text, length, lenient);
  if (!good) return OV_EINVAL;
  if (const ov_rc error = take_room((units + 1) * sizeof *dst, bytes)) return error;
  ov::utf8_convert(text, length, dst, units);
  dst[units] = 0;
  return 0;
}

ov_rc utf16_to_utf8_by_blocks(const ov::Utf16Unit* src, bool lenient, char* dst, size_t* bytes) {
  const size_t length = ov::text_length(src);
  const auto [good, count] = ov::utf16_measure(src, length, lenient);
  if (!good) return OV_EINVAL;
  if (const ov_rc error = take_room(count + 1, bytes)) return error;
  ov::utf16_convert(src, length, reinterpret_cast<uint8_t*>(dst), count);
  dst[count] = 0;
  return 0;
}

bool are_good(const void* src, const void* dst, const size_t* bytes) {
  return src != nullptr && bytes != nullptr && (dst != nullptr || *bytes == 0);
}

template <typename Unit>
ov_rc from_utf8(const char* src, int32_t flags, Unit* dst, size_t* bytes) {
  if (!are_good(src, dst, bytes)) return OV_EINVAL;
  if (sizeof(Unit) == sizeof(ov::Utf16Unit) && ov::utf8_can_measure()) {
    return utf8_to_utf16_by_blocks(src, flags != 0, reinterpret_cast<ov::Utf16Unit*>(dst), bytes);
  }
  return convert(dst, bytes, [src, flags](auto& output) {
    return utf8_to_units<Unit>(src, flags != 0, output);
  });
}

template <typename Unit>
ov_rc to_utf8(const Unit* src, int32_t flags, char* dst, size_t* bytes) {
  if (!are_good(src, dst, bytes)) return OV_EINVAL;
  if constexpr (sizeof(Unit) == sizeof(ov::Utf16Unit)) {
    const auto* const units = reinterpret_cast<const ov::Utf16Unit*>(src);
    return utf16_to_utf8_by_blocks(units, flags != 0, dst, bytes);
  } else {
    return convert(dst, bytes, [src, flags](auto& output) {
      return code_points_to_utf8(src, flags != 0, output);
    });
  }
}

}  // namespace

size_t ov_utf16_len(const uint16_t* text) {
  return text != nullptr ? ov::text_length(text) : 0;
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
