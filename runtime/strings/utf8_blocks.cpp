#include <bit>
#include <cstring>

#include "runtime/strings/utf8_sequence.h"
#include "runtime/strings/utf_block_operations.h"
#include "runtime/strings/utf_blocks.h"

namespace {

using namespace ov;

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
    put(high_surrogate(point));
    put(low_surrogate(point));
    *text += 4;
  }
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

}  // namespace ov
