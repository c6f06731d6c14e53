#include <bit>

#include "runtime/strings/utf8_sequence.h"
#include "runtime/strings/utf_block_operations.h"
#include "runtime/strings/utf_blocks.h"

namespace {

using namespace ov;

// Bytes of a unit from 0x800 on, alone.
constexpr size_t kUnitBytes = 3;
// More than eight units can take, with room for whole stores.
constexpr ptrdiff_t kConvertRoom = 32;

// One unit, or two that are a pair.
OV_IN_LINE void convert_unit(const Utf16Unit** text, uint8_t** dst) {
  const auto put = [dst](uint32_t byte) { *(*dst)++ = static_cast<uint8_t>(byte); };
  uint32_t point = *(*text)++;
  if (point < 0x80) return put(point);
  if (point < 0x800) {
    put(0xc0 | point >> 6);
    return put(0x80 | (point & 0x3f));
  }
  if (is_high_surrogate(point) && is_low_surrogate(**text)) {
    point = code_point_of_pair(point, *(*text)++);
    put(0xf0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3f));
  } else {
    put(0xe0 | point >> 12);
  }
  put(0x80 | (point >> 6 & 0x3f));
  put(0x80 | (point & 0x3f));
}

OV_IN_LINE bool are_all_of_three(__m128i units) {
  return (units_with(units, 0xf800, 0) | units_with(units, 0xf800, 0xd800)) == 0;
}

// Converts whole blocks of units of three bytes each, up to the first other unit or to where there
// is no room for more than the block; the number of units.
OV_SHUFFLES size_t convert_units_of_three(const Utf16Unit* text, const Utf16Unit* end, uint8_t* dst,
                                          const uint8_t* dst_end) {
  constexpr ptrdiff_t kRoom = 28;  // of which 24 stay
  const __m128i continuation = _mm_set1_epi16(0x80);
  const __m128i low = _mm_set1_epi16(0x3f);
  const __m128i order = table(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  const Utf16Unit* at = text;
  for (; end - at >= kUnitBlockDistance && dst_end - dst >= kRoom; at += kUnitBlock, dst += 24) {
    const __m128i units = load(at);
    if (!are_all_of_three(units)) break;
    const __m128i first = _mm_or_si128(_mm_srli_epi16(units, 12), _mm_set1_epi16(0xe0));
    const __m128i second = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), low), continuation);
    const __m128i third = _mm_or_si128(_mm_and_si128(units, low), continuation);
    const __m128i two = _mm_or_si128(first, _mm_slli_epi16(second, 8));
    store(dst, _mm_shuffle_epi8(_mm_unpacklo_epi16(two, third), order));
    store(dst + 12, _mm_shuffle_epi8(_mm_unpackhi_epi16(two, third), order));
  }
  return static_cast<size_t>(at - text);
}

// How four units of a lane of 32 bits each become text: for each pattern of units that are ASCII,
// in the low four bits, and of those with at most two bytes, in the high four.
constexpr uint32_t kPackedUnits = 4;
constexpr size_t kPackings = 1 << (2 * kPackedUnits);

struct Packings {
  alignas(kBlock) uint8_t orders[kPackings][kBlock];
  uint8_t lengths[kPackings];
};

constexpr Packings packings() {
  constexpr uint8_t kNothing = 0xff;
  Packings result{};
  for (size_t pattern = 0; pattern < kPackings; ++pattern) {
    size_t length = 0;
    for (uint8_t& place : result.orders[pattern]) place = kNothing;
    for (size_t unit = 0; unit < kPackedUnits; ++unit) {
      const bool one = (pattern >> unit & 1) != 0;
      const bool small = (pattern >> (unit + kPackedUnits) & 1) != 0;
      // The last byte of a unit is the third of its lane.
      for (size_t byte = one ? 2 : small ? 1 : 0; byte < 3; ++byte) {
        result.orders[pattern][length++] = static_cast<uint8_t>(unit * sizeof(uint32_t) + byte);
      }
    }
    result.lengths[pattern] = static_cast<uint8_t>(length);
  }
  return result;
}

constexpr Packings kPacking = packings();

// Stores the bytes of four units; 16 bytes are written, and the number returned counts.
OV_SHUFFLES_IN_LINE size_t pack_units(__m128i lanes, uint32_t pattern, uint8_t* dst) {
  store(dst, _mm_shuffle_epi8(lanes, load(kPacking.orders[pattern])));
  return kPacking.lengths[pattern];
}

OV_IN_LINE __m128i chosen(__m128i mask, __m128i where_set, __m128i elsewhere) {
  return _mm_or_si128(_mm_and_si128(mask, where_set), _mm_andnot_si128(mask, elsewhere));
}

OV_IN_LINE __m128i all_units(int value) {
  return _mm_set1_epi16(static_cast<short>(value));
}

// The pattern of the first four units, and eight bits on that of the others.
OV_IN_LINE uint32_t pattern_of(__m128i is_ascii, __m128i is_small) {
  const __m128i kinds = _mm_packs_epi16(is_ascii, is_small);
  return static_cast<uint32_t>(
      _mm_movemask_epi8(_mm_shuffle_epi32(kinds, _MM_SHUFFLE(3, 1, 2, 0))));
}

constexpr uint32_t kAllAscii = 0xffff;
constexpr uint32_t kAllSmall = 0xf0f0;
constexpr uint32_t kAllOfThree = 0;
constexpr uint32_t kLastAsOne = 0x8800;

// The bytes of eight units, a lane of 16 bits for each, and which of them count.
struct UnitBytes {
  __m128i middle;  // the second of three, the first of two
  __m128i last;
  uint32_t small;  // their patterns
  size_t units;    // how many of the eight are whole; another one stands as one byte
};

OV_IN_LINE UnitBytes bytes_of_units(__m128i units) {
  const __m128i is_ascii = without_bits(units, 0xff80);
  const __m128i is_small = without_bits(units, 0xf800);
  const __m128i continued = _mm_or_si128(_mm_and_si128(units, all_units(0x3f)), all_units(0x80));
  const __m128i upper = _mm_and_si128(_mm_srli_epi16(units, 6), all_units(0x3f));
  const __m128i middle =
      _mm_or_si128(_mm_or_si128(upper, all_units(0x80)), _mm_and_si128(is_small, all_units(0x40)));
  return {middle, chosen(is_ascii, units, continued), pattern_of(is_ascii, is_small), kUnitBlock};
}

// Gives each half of a pair its two bytes. A pair whose second half is in the next block is left to
// it. False for a surrogate alone.
OV_IN_LINE bool take_pairs(__m128i units, UnitBytes* bytes) {
  const __m128i is_high = equal_bits(units, 0xfc00, 0xd800);
  const __m128i is_low = equal_bits(units, 0xfc00, 0xdc00);
  const auto halves = static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(is_high, is_low)));
  uint32_t high = halves & 0xff;
  if ((high & 1u << (kUnitBlock - 1)) != 0) {
    bytes->units = kUnitBlock - 1;
    bytes->small |= kLastAsOne;
    high &= (1u << (kUnitBlock - 1)) - 1;
  }
  if (high << 1 != halves >> kUnitBlock) return false;
  // The code point's bits from the tenth on, of which the second half gets two.
  const __m128i upper =
      _mm_add_epi16(_mm_and_si128(units, all_units(0x3ff)), all_units(kFirstSupplementary >> 10));
  const __m128i given = _mm_slli_epi16(_mm_and_si128(_mm_slli_si128(upper, 2), all_units(3)), 4);
  const __m128i second =
      _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), all_units(0xf)), given),
                   all_units(0x80));
  const __m128i first = _mm_or_si128(_mm_srli_epi16(upper, 8), all_units(0xf0));
  const __m128i behind_first =
      _mm_or_si128(_mm_and_si128(_mm_srli_epi16(upper, 2), all_units(0x3f)), all_units(0x80));
  bytes->middle = chosen(is_high, first, chosen(is_low, second, bytes->middle));
  bytes->last = chosen(is_high, behind_first, bytes->last);
  bytes->small |= pattern_of(_mm_setzero_si128(), _mm_or_si128(is_high, is_low));
  return true;
}

// Converts without a branch for each unit, which texts of several scripts would have guessed wrong,
// as long as there is room for whole stores; both positions move.
OV_SHUFFLES void convert_units_by_shuffles(const Utf16Unit** source, const Utf16Unit* end,
                                           uint8_t** target, const uint8_t* dst_end) {
  const Utf16Unit* text = *source;
  uint8_t* dst = *target;
  while (end - text >= kUnitBlockDistance && dst_end - dst >= kConvertRoom) {
    const __m128i units = load(text);
    UnitBytes bytes = bytes_of_units(units);
    if (bytes.small == kAllAscii) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(units, units));
      text += kUnitBlock;
      dst += kUnitBlock;
      continue;
    }
    const bool has_pairs =
        (bytes.small & kAllSmall) != kAllSmall && units_with(units, 0xf800, 0xd800) != 0;
    if (bytes.small == kAllOfThree && !has_pairs) {
      const size_t done = convert_units_of_three(text, end, dst, dst_end);
      text += done;
      dst += done * kUnitBytes;
      if (done != 0) continue;
    }
    if (has_pairs && !take_pairs(units, &bytes)) {
      convert_unit(&text, &dst);
      continue;
    }
    const __m128i first = _mm_or_si128(_mm_srli_epi16(units, 12), all_units(0xe0));
    const __m128i before_last = _mm_or_si128(first, _mm_slli_epi16(bytes.middle, 8));
    dst += pack_units(_mm_unpacklo_epi16(before_last, bytes.last), bytes.small & 0xff, dst);
    dst += pack_units(_mm_unpackhi_epi16(before_last, bytes.last), bytes.small >> 8, dst);
    dst -= kUnitBlock - bytes.units;
    text += bytes.units;
  }
  *source = text;
  *target = dst;
}

}  // namespace

namespace ov {

void utf16_convert(const Utf16Unit* text, size_t length, uint8_t* dst, size_t bytes) {
  const Utf16Unit* const end = text + length;
  if (utf8_can_measure()) convert_units_by_shuffles(&text, end, &dst, dst + bytes);
  while (text != end) convert_unit(&text, &dst);
}

}  // namespace ov
