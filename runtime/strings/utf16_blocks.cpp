#include <bit>

#include "runtime/strings/utf8_sequence.h"
#include "runtime/strings/utf_block_operations.h"
#include "runtime/strings/utf_blocks.h"

namespace {

using namespace ov;

// Bytes of a unit from 0x800 on, alone, and of a pair.
constexpr size_t kUnitBytes = 3;
constexpr size_t kPairBytes = 4;
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

// All ones for each unit whose bits of the mask are `value`.
OV_IN_LINE __m128i equal_bits(__m128i units, int mask, int value) {
  const __m128i bits = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(mask)));
  return _mm_cmpeq_epi16(bits, _mm_set1_epi16(static_cast<short>(value)));
}

OV_IN_LINE __m128i without_bits(__m128i units, int mask) {
  return equal_bits(units, mask, 0);
}

// The same as two bits for each unit.
OV_IN_LINE uint32_t units_with(__m128i units, int mask, int value) {
  return static_cast<uint32_t>(_mm_movemask_epi8(equal_bits(units, mask, value)));
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

// How four units of a lane of 32 bits each become text: for each pattern of units that are not
// ASCII, in the low four bits, and of those with three bytes, in the high four.
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
      const bool more = (pattern >> unit & 1) != 0;
      const bool three = (pattern >> (unit + kPackedUnits) & 1) != 0;
      // The last byte of a unit is the third of its lane.
      for (size_t byte = three ? 0 : more ? 1 : 2; byte < 3; ++byte) {
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

// The bytes of eight units, a lane of 16 bits for each, and which of them count.
struct UnitBytes {
  __m128i middle;  // the second of three, the first of two
  __m128i last;
  uint32_t more;   // a bit for each unit of more than one byte
  uint32_t three;  // a bit for each unit of three
  size_t units;    // how many of the eight are whole
};

OV_IN_LINE UnitBytes bytes_of_units(__m128i units) {
  const __m128i is_ascii = without_bits(units, 0xff80);
  const __m128i is_small = without_bits(units, 0xf800);
  const auto smaller =
      static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(is_ascii, is_small)));
  const __m128i continued = _mm_or_si128(_mm_and_si128(units, all_units(0x3f)), all_units(0x80));
  const __m128i upper = _mm_and_si128(_mm_srli_epi16(units, 6), all_units(0x3f));
  const __m128i middle =
      _mm_or_si128(_mm_or_si128(upper, all_units(0x80)), _mm_and_si128(is_small, all_units(0x40)));
  return {middle, chosen(is_ascii, units, continued), ~smaller & 0xff,
          ~smaller >> kUnitBlock & 0xff, kUnitBlock};
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
  bytes->three &= ~(halves | halves >> kUnitBlock);
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
    if (bytes.more == 0) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(units, units));
      text += kUnitBlock;
      dst += kUnitBlock;
      continue;
    }
    const bool has_pairs = bytes.three != 0 && units_with(units, 0xf800, 0xd800) != 0;
    if (bytes.three == 0xff && !has_pairs) {
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
    // A unit that is not whole stands as one byte, which is taken back.
    const uint32_t whole = (1u << bytes.units) - 1;
    const uint32_t more = bytes.more & whole;
    const uint32_t three = bytes.three & whole;
    const uint32_t low = (more & 0xf) | (three & 0xf) << kPackedUnits;
    const uint32_t high = more >> kPackedUnits | (three & 0xf0);
    dst += pack_units(_mm_unpacklo_epi16(before_last, bytes.last), low, dst);
    dst += pack_units(_mm_unpackhi_epi16(before_last, bytes.last), high, dst);
    dst -= kUnitBlock - bytes.units;
    text += bytes.units;
  }
  *source = text;
  *target = dst;
}

}  // namespace

namespace ov {

UtfMeasure utf16_measure(const Utf16Unit* text, size_t length, bool surrogates_allowed) {
  // A unit has three bytes, but for one that is smaller and for the two of a pair.
  __m128i fewer = _mm_setzero_si128();
  uint32_t awaited = 0;  // the low surrogate at the start of the next block
  size_t ascii = 0;
  size_t at = 0;
  while (length - at >= kUnitBlock) {
    if (awaited == 0 && length - at >= 2 * kUnitBlock) {
      const __m128i both = _mm_or_si128(load(text + at), load(text + at + kUnitBlock));
      if (units_with(both, 0xff80, 0) == 0xffff) {
        at += 2 * kUnitBlock;
        ascii += 2 * kUnitBlock;
        continue;
      }
    }
    const __m128i units = load(text + at);
    const uint32_t high = units_with(units, 0xfc00, 0xd800);
    if (units_with(units, 0xfc00, 0xdc00) != ((high << 2 | awaited) & 0xffff)) break;
    awaited = high >> 14;
    const __m128i small = _mm_packs_epi16(without_bits(units, 0xff80), without_bits(units, 0xf800));
    const __m128i paired = _mm_packs_epi16(equal_bits(units, 0xf800, 0xd800), _mm_setzero_si128());
    const __m128i counted = _mm_add_epi8(small, paired);
    fewer = _mm_add_epi64(fewer, sum_of_bytes(_mm_sub_epi8(_mm_setzero_si128(), counted)));
    at += kUnitBlock;
  }
  size_t bytes = (at - ascii) * kUnitBytes + ascii - total(fewer);
  // The rest, and what is behind a surrogate in the wrong place; with the first half of a pair that
  // the last block has counted already.
  if (awaited != 0) {
    --at;
    bytes -= kPairBytes / 2;
  }
  const Utf16Unit* const end = text + length;
  for (const Utf16Unit* rest = text + at; rest != end;) {
    const size_t of_unit = measure_unit(&rest);
    if (of_unit == 0 && !surrogates_allowed) return {false, 0};
    bytes += of_unit == 0 ? kUnitBytes : of_unit;
  }
  return {true, bytes};
}

void utf16_convert(const Utf16Unit* text, size_t length, uint8_t* dst, size_t bytes) {
  const Utf16Unit* const end = text + length;
  if (utf8_can_measure()) convert_units_by_shuffles(&text, end, &dst, dst + bytes);
  while (text != end) convert_unit(&text, &dst);
}

}  // namespace ov
