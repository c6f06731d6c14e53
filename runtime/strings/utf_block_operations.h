// What both directions of the conversion by blocks use of the processor. The shuffles of SSSE3 are
// in functions of their own, which are called only where utf8_can_measure() has found them.
#pragma once

#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

#define OV_SHUFFLES __attribute__((target("ssse3")))
#define OV_SHUFFLES_IN_LINE __attribute__((target("ssse3"), always_inline)) inline
// What a loop does for each block or sequence keeps its state in registers only in line.
#define OV_IN_LINE __attribute__((always_inline)) inline

namespace ov {

constexpr size_t kBlock = sizeof(__m128i);
constexpr size_t kUnitBlock = kBlock / sizeof(uint16_t);
constexpr ptrdiff_t kBlockDistance = kBlock;
constexpr ptrdiff_t kUnitBlockDistance = kUnitBlock;

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

inline size_t total(__m128i halves) {
  uint64_t sums[2];
  store(sums, halves);
  return static_cast<size_t>(sums[0] + sums[1]);
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

// The sum of eight units below 0x8000.
inline size_t sum_of_units(__m128i units) {
  const __m128i sums = _mm_madd_epi16(units, _mm_set1_epi16(1));
  return total(_mm_add_epi64(_mm_unpacklo_epi32(sums, _mm_setzero_si128()),
                             _mm_unpackhi_epi32(sums, _mm_setzero_si128())));
}

OV_SHUFFLES_IN_LINE __m128i table(int a, int b, int c, int d, int e, int f, int g, int h, int i,
                                  int j, int k, int l, int m, int n, int o, int p) {
  const auto byte = [](int value) { return static_cast<char>(value); };
  return _mm_setr_epi8(byte(a), byte(b), byte(c), byte(d), byte(e), byte(f), byte(g), byte(h),
                       byte(i), byte(j), byte(k), byte(l), byte(m), byte(n), byte(o), byte(p));
}

}  // namespace ov
