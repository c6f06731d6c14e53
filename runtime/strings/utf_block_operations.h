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

OV_SHUFFLES_IN_LINE __m128i table(int a, int b, int c, int d, int e, int f, int g, int h, int i,
                                  int j, int k, int l, int m, int n, int o, int p) {
  const auto byte = [](int value) { return static_cast<char>(value); };
  return _mm_setr_epi8(byte(a), byte(b), byte(c), byte(d), byte(e), byte(f), byte(g), byte(h),
                       byte(i), byte(j), byte(k), byte(l), byte(m), byte(n), byte(o), byte(p));
}

}  // namespace ov
