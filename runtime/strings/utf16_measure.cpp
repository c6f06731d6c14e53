#include <algorithm>

#include "runtime/strings/utf8_sequence.h"
#include "runtime/strings/utf_block_operations.h"
#include "runtime/strings/utf_blocks.h"

namespace {

using namespace ov;

// Bytes of a unit from 0x800 on, alone.
constexpr size_t kUnitBytes = 3;

// Bytes of one unit or pair; 0 for a lone surrogate.
OV_IN_LINE size_t measure_unit(const Utf16Unit** text) {
  const uint32_t unit = *(*text)++;
  if (unit < 0x80) return 1;
  if (unit < 0x800) return 2;
  if (!is_surrogate(unit)) return 3;
  if (!is_high_surrogate(unit) || !is_low_surrogate(**text)) return 0;
  ++*text;
  return 4;
}

// Adds the bytes of the units up to `stop`, and of the second half of a pair behind it. False for a
// lone surrogate that is not allowed.
bool measure_units(const Utf16Unit** text, const Utf16Unit* stop, bool surrogates_allowed,
                   size_t* bytes) {
  while (*text < stop) {
    const size_t of_unit = measure_unit(text);
    if (of_unit == 0 && !surrogates_allowed) return false;
    *bytes += of_unit == 0 ? kUnitBytes : of_unit;
  }
  return true;
}

// Units of the ASCII blocks at the start, of up to so many blocks.
size_t leading_ascii(const Utf16Unit* text, size_t blocks) {
  size_t at = 0;
  while (at != blocks * kUnitBlock && units_with(load(text + at), 0xff80, 0) == 0xffff) {
    at += kUnitBlock;
  }
  return at;
}

// Blocks that are counted together: few enough for sums of 16 bits, and for a run with a surrogate
// in the wrong place to be counted once more, unit by unit.
constexpr size_t kRunBlocks = 256;

// Bytes of whole blocks of units, of which another unit stands in front; 0 where a surrogate is in
// the wrong place. The first half of a pair counts as three bytes, the second as one.
OV_IN_LINE size_t measure_blocks(const Utf16Unit* text, size_t blocks) {
  __m128i fewer = _mm_setzero_si128();
  __m128i wrong = _mm_setzero_si128();
  for (size_t at = 0; at != blocks * kUnitBlock; at += kUnitBlock) {
    const __m128i units = load(text + at);
    const __m128i is_low = equal_bits(units, 0xfc00, 0xdc00);
    const __m128i small = _mm_add_epi16(without_bits(units, 0xff80), without_bits(units, 0xf800));
    fewer = _mm_sub_epi16(fewer, _mm_add_epi16(small, _mm_add_epi16(is_low, is_low)));
    const __m128i behind_high = equal_bits(load(text + at - 1), 0xfc00, 0xd800);
    wrong = _mm_or_si128(wrong, _mm_xor_si128(behind_high, is_low));
  }
  if (_mm_movemask_epi8(wrong) != 0) return 0;
  return blocks * kUnitBlock * kUnitBytes - sum_of_units(fewer);
}

}  // namespace

namespace ov {

UtfMeasure utf16_measure(const Utf16Unit* text, size_t length, bool surrogates_allowed) {
  const Utf16Unit* const end = text + length;
  size_t bytes = 0;
  for (const Utf16Unit* at = text; at != end;) {
    const size_t left = static_cast<size_t>(end - at) / kUnitBlock;
    if (const size_t ascii = leading_ascii(at, left)) {
      at += ascii;
      bytes += ascii;
      continue;
    }
    // The first unit is counted alone, and stands in front of the first block.
    const size_t blocks = at == text ? 0 : std::min(left, kRunBlocks);
    if (const size_t of_blocks = measure_blocks(at, blocks)) {
      at += blocks * kUnitBlock;
      bytes += of_blocks;
      if (!is_high_surrogate(at[-1])) continue;
      // What follows begins with a whole pair.
      --at;
      bytes -= kUnitBytes;
      continue;
    }
    const size_t units = at == text    ? 1
                         : blocks == 0 ? static_cast<size_t>(end - at)
                                       : blocks * kUnitBlock;
    if (!measure_units(&at, at + units, surrogates_allowed, &bytes)) return {false, 0};
  }
  return {true, bytes};
}

}  // namespace ov
