#include "runtime/strings/utf_blocks.h"

#include <tmmintrin.h>

#include <bit>
#include <cstring>

#include "runtime/strings/utf8_sequence.h"

#define OV_SHUFFLES __attribute__((target("ssse3")))
#define OV_SHUFFLES_IN_LINE __attribute__((target("ssse3"), always_inline)) inline
// What a loop does for each block or sequence keeps its state in registers only in line.
#define OV_IN_LINE __attribute__((always_inline)) inline

namespace {

using ov::Utf16Unit;

constexpr size_t kBlock = sizeof(__m128i);
constexpr size_t kUnitBlock = kBlock / sizeof(uint16_t);
constexpr ptrdiff_t kBlockDistance = kBlock;
constexpr ptrdiff_t kUnitBlockDistance = kUnitBlock;
// Bytes of a unit from 0x800 on, alone, and of a pair.
constexpr size_t kUnitBytes = 3;
constexpr size_t kPairBytes = 4;
// More than eight units can take, of which the last may open a pair, with room for a whole store.
constexpr ptrdiff_t kConvertRoom = 32;

OV_IN_LINE __m128i load(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

OV_IN_LINE void store(void* to, __m128i value) {
  _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

// The sum of the 16 bytes, in two halves.
OV_IN_LINE __m128i sum_of_bytes(__m128i bytes) {
  return _mm_sad_epu8(bytes, _mm_setzero_si128());
}

size_t total(__m128i halves) {
  uint64_t sums[2];
  store(sums, halves);
  return static_cast<size_t>(sums[0] + sums[1]);
}

// What can be wrong with two bytes that follow each other. A fault is where all three tables, by
// the halves of the first byte and the high half of the second, have its bit; the last one is no
// fault where a sequence of three or four wants a second continuation byte.
constexpr int kTooShort = 1 << 0;   // no continuation byte behind a first byte
constexpr int kTooLong = 1 << 1;    // a continuation byte behind ASCII
constexpr int kOverlong3 = 1 << 2;  // e0 with less than a0
constexpr int kTooLarge = 1 << 3;   // f4 with 90 and above, f5 and above
constexpr int kSurrogate = 1 << 4;  // ed with a0 and above
constexpr int kOverlong2 = 1 << 5;  // c0, c1
constexpr int kOverlong4 = 1 << 6;  // f0 with less than 90, and f5 and above with them
constexpr int kContinued = 1 << 7;  // two continuation bytes
constexpr int kAnyLowHalf = kTooShort | kTooLong | kContinued;
constexpr int kBeyond = kAnyLowHalf | kTooLarge | kOverlong4;
constexpr int kBehindSecond = kTooLong | kOverlong2 | kContinued;

OV_SHUFFLES_IN_LINE __m128i table(int a, int b, int c, int d, int e, int f, int g, int h, int i,
                                  int j, int k, int l, int m, int n, int o, int p) {
  const auto byte = [](int value) { return static_cast<char>(value); };
  return _mm_setr_epi8(byte(a), byte(b), byte(c), byte(d), byte(e), byte(f), byte(g), byte(h),
                       byte(i), byte(j), byte(k), byte(l), byte(m), byte(n), byte(o), byte(p));
}

OV_SHUFFLES_IN_LINE __m128i high_halves(__m128i bytes) {
  return _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(15));
}

// The faults in a block, of which `previous` is the one before.
OV_SHUFFLES_IN_LINE __m128i faults_of(__m128i block, __m128i previous) {
  const __m128i by_first_high =
      table(kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong,
            kContinued, kContinued, kContinued, kContinued, kTooShort | kOverlong2, kTooShort,
            kTooShort | kOverlong3 | kSurrogate, kTooShort | kTooLarge | kOverlong4);
  const __m128i by_first_low =
      table(kAnyLowHalf | kOverlong3 | kOverlong2 | kOverlong4, kAnyLowHalf | kOverlong2,
            kAnyLowHalf, kAnyLowHalf, kAnyLowHalf | kTooLarge, kBeyond, kBeyond, kBeyond, kBeyond,
            kBeyond, kBeyond, kBeyond, kBeyond, kBeyond | kSurrogate, kBeyond, kBeyond);
  const __m128i by_second_high =
      table(kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
            kBehindSecond | kOverlong3 | kOverlong4, kBehindSecond | kOverlong3 | kTooLarge,
            kBehindSecond | kSurrogate | kTooLarge, kBehindSecond | kSurrogate | kTooLarge,
            kTooShort, kTooShort, kTooShort, kTooShort);
  const __m128i first = _mm_alignr_epi8(block, previous, 15);
  const __m128i pairs = _mm_and_si128(
      _mm_and_si128(_mm_shuffle_epi8(by_first_high, high_halves(first)),
                    _mm_shuffle_epi8(by_first_low, _mm_and_si128(first, _mm_set1_epi8(15)))),
      _mm_shuffle_epi8(by_second_high, high_halves(block)));
  // The highest bit is set where the byte two before opens at least three, or three before four.
  const __m128i third = _mm_subs_epu8(_mm_alignr_epi8(block, previous, 14),
                                      _mm_set1_epi8(static_cast<char>(0xe0 - 0x80)));
  const __m128i fourth = _mm_subs_epu8(_mm_alignr_epi8(block, previous, 13),
                                       _mm_set1_epi8(static_cast<char>(0xf0 - 0x80)));
  const __m128i wanted =
      _mm_and_si128(_mm_or_si128(third, fourth), _mm_set1_epi8(static_cast<char>(0x80)));
  return _mm_xor_si128(wanted, pairs);
}

// Each byte that opens a sequence is a unit, and one more if the sequence is of four.
OV_IN_LINE __m128i units_of(__m128i block) {
  const __m128i opens = _mm_cmpgt_epi8(block, _mm_set1_epi8(static_cast<char>(0xbf)));
  const __m128i four =
      _mm_cmpeq_epi8(_mm_max_epu8(block, _mm_set1_epi8(static_cast<char>(0xf0))), block);
  return sum_of_bytes(_mm_sub_epi8(_mm_setzero_si128(), _mm_add_epi8(opens, four)));
}

// One sequence of a text that is good.
OV_IN_LINE void convert_sequence(const uint8_t** text, Utf16Unit** dst) {
  const uint8_t* const at = *text;
  const auto put = [dst](uint32_t unit) { *(*dst)++ = static_cast<Utf16Unit>(unit); };
  const auto rest = [at](size_t i) { return at[i] & 0x3fu; };
  if (at[0] < 0x80) {
    put(at[0]);
    *text += 1;
  } else if (at[0] < 0xe0) {
    put((at[0] & 0x1fu) << 6 | rest(1));
    *text += 2;
  } else if (at[0] < 0xf0) {
    put((at[0] & 0x0fu) << 12 | rest(1) << 6 | rest(2));
    *text += 3;
  } else {
    const uint32_t point = (at[0] & 0x07u) << 18 | rest(1) << 12 | rest(2) << 6 | rest(3);
    put(ov::high_surrogate(point));
    put(ov::low_surrogate(point));
    *text += 4;
  }
}

// One unit, or two that are a pair.
OV_IN_LINE void convert_unit(const Utf16Unit** text, uint8_t** dst) {
  const auto put = [dst](uint32_t byte) { *(*dst)++ = static_cast<uint8_t>(byte); };
  uint32_t point = *(*text)++;
  if (point < 0x80) return put(point);
  if (point < 0x800) {
    put(0xc0 | point >> 6);
    return put(0x80 | (point & 0x3f));
  }
  if (ov::is_high_surrogate(point) && ov::is_low_surrogate(**text)) {
    point = ov::code_point_of_pair(point, *(*text)++);
    put(0xf0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3f));
  } else {
    put(0xe0 | point >> 12);
  }
  put(0x80 | (point >> 6 & 0x3f));
  put(0x80 | (point & 0x3f));
}

// The same where there is room for four bytes whatever the unit needs: whether a unit takes two or
// three is then no branch, which texts of several scripts would have guessed wrong.
OV_IN_LINE void convert_unit_with_room(const Utf16Unit** text, uint8_t** dst) {
  const uint32_t unit = **text;
  if (ov::is_surrogate(unit)) return convert_unit(text, dst);
  const uint32_t last = 0x80 | (unit & 0x3f);
  const uint32_t two = (0xc0 | unit >> 6) | last << 8;
  const uint32_t three = (0xe0 | unit >> 12) | (0x80 | (unit >> 6 & 0x3f)) << 8 | last << 16;
  const bool has_three = unit >= 0x800;
  const uint32_t bytes = has_three ? three : two;
  std::memcpy(*dst, &bytes, sizeof bytes);
  *dst += has_three ? 3 : 2;
  ++*text;
}

// Bytes of one unit or pair; 0 for a lone surrogate.
OV_IN_LINE size_t measure_unit(const Utf16Unit** text) {
  const uint32_t unit = *(*text)++;
  if (unit < 0x80) return 1;
  if (unit < 0x800) return 2;
  if (!ov::is_surrogate(unit)) return 3;
  if (!ov::is_high_surrogate(unit) || !ov::is_low_surrogate(**text)) return 0;
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

// Whether a block of good text begins with five sequences of three bytes, as texts in Chinese,
// Japanese and Korean do nearly everywhere: by where the continuation bytes are.
OV_IN_LINE bool is_five_of_three(__m128i block) {
  const __m128i continued = _mm_cmpgt_epi8(_mm_set1_epi8(static_cast<char>(0xc0)), block);
  return _mm_movemask_epi8(continued) == 0x6db6;
}

OV_SHUFFLES_IN_LINE __m128i units_of_three(__m128i block) {
  const __m128i outer =
      _mm_shuffle_epi8(block, table(2, 0, 5, 3, 8, 6, 11, 9, 14, 12, -1, -1, -1, -1, -1, -1));
  const __m128i middle =
      _mm_shuffle_epi8(block, table(1, -1, 4, -1, 7, -1, 10, -1, 13, -1, -1, -1, -1, -1, -1, -1));
  const __m128i first = _mm_slli_epi16(_mm_and_si128(outer, _mm_set1_epi16(0x0f00)), 4);
  const __m128i second = _mm_slli_epi16(_mm_and_si128(middle, _mm_set1_epi16(0x3f)), 6);
  const __m128i third = _mm_and_si128(outer, _mm_set1_epi16(0x3f));
  return _mm_or_si128(_mm_or_si128(first, second), third);
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

}  // namespace

namespace ov {

bool utf8_can_measure() {
  __builtin_cpu_init();
  return static_cast<bool>(__builtin_cpu_supports("ssse3"));
}

OV_SHUFFLES UtfMeasure utf8_measure(const uint8_t* text, size_t length, bool surrogates_allowed) {
  __m128i previous = _mm_setzero_si128();
  __m128i faults = _mm_setzero_si128();
  __m128i units = _mm_setzero_si128();
  size_t ascii = 0;
  size_t at = 0;
  for (; length - at >= kBlock; at += kBlock) {
    const __m128i block = load(text + at);
    if (_mm_movemask_epi8(_mm_or_si128(block, previous)) == 0) {
      ascii += kBlock;
      continue;
    }
    faults = _mm_or_si128(faults, faults_of(block, previous));
    units = _mm_add_epi64(units, units_of(block));
    previous = block;
  }
  // Zeros behind the end, which count as units, but leave no sequence unfinished.
  uint8_t last[kBlock] = {};
  std::memcpy(last, text + at, length - at);
  const __m128i block = load(last);
  faults = _mm_or_si128(faults, faults_of(block, previous));
  units = _mm_add_epi64(units, units_of(block));
  if (surrogates_allowed) faults = _mm_andnot_si128(_mm_set1_epi8(kSurrogate), faults);
  const bool good = _mm_movemask_epi8(_mm_cmpeq_epi8(faults, _mm_setzero_si128())) == 0xffff;
  return {good, ascii + total(units) - (kBlock - (length - at))};
}

OV_SHUFFLES void utf8_convert(const uint8_t* text, size_t length, Utf16Unit* dst, size_t units) {
  const uint8_t* const end = text + length;
  Utf16Unit* const dst_end = dst + units;
  const __m128i zero = _mm_setzero_si128();
  while (end - text >= kBlockDistance && dst_end - dst >= kBlockDistance) {
    const __m128i block = load(text);
    const auto others = static_cast<uint32_t>(_mm_movemask_epi8(block));
    if ((others & 1) != 0 && is_five_of_three(block)) {
      store(dst, units_of_three(block));
      text += 15;
      dst += 5;
      continue;
    }
    store(dst, _mm_unpacklo_epi8(block, zero));
    store(dst + kUnitBlock, _mm_unpackhi_epi8(block, zero));
    const uint8_t* const behind = text + kBlock;
    if (others == 0) {
      text = behind;
      dst += kBlock;
      continue;
    }
    const int plain = std::countr_zero(others);
    text += plain;
    dst += plain;
    while (*text >= 0x80 && text < behind) convert_sequence(&text, &dst);
  }
  while (text != end) convert_sequence(&text, &dst);
}

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
  uint8_t* const dst_end = dst + bytes;
  const bool shuffles = utf8_can_measure();
  while (end - text >= kUnitBlockDistance && dst_end - dst >= kConvertRoom) {
    const __m128i units = load(text);
    const __m128i packed = _mm_packus_epi16(units, units);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), packed);
    const uint32_t plain_units = units_with(units, 0xff80, 0);
    const Utf16Unit* const behind = text + kUnitBlock;
    if (plain_units == 0xffff) {
      text = behind;
      dst += kUnitBlock;
      continue;
    }
    if (plain_units == 0 && shuffles && are_all_of_three(units)) {
      const size_t done = convert_units_of_three(text, end, dst, dst_end);
      text += done;
      dst += done * kUnitBytes;
      if (done != 0) continue;
    }
    // Two bits for each unit.
    const int plain = std::countr_one(plain_units) / 2;
    text += plain;
    dst += plain;
    while (*text >= 0x80 && text < behind) convert_unit_with_room(&text, &dst);
  }
  while (text != end) convert_unit(&text, &dst);
}

}  // namespace ov
