// The base64 encoder by shuffles of 16 bytes, which most processors have but not all. The wider
// registers of newer ones are left alone: the Windows compiler does not align what it spills of
// them.
#include <tmmintrin.h>

#include "runtime/strings/base64.h"

namespace {

constexpr size_t kBlockBytes = 12;
constexpr size_t kBlockSymbols = 16;

__attribute__((target("ssse3"))) __m128i load(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

// Spreads 12 bytes over the 16 bytes of the result, 6 bits each.
__attribute__((target("ssse3"))) __m128i split(__m128i bytes) {
  // Each group of three bytes a, b, c becomes the four bytes b, a, c, b: two words of 16 bits, the
  // first with the first and second value of the group, the other with the third and fourth.
  const __m128i order = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  const __m128i words = _mm_shuffle_epi8(bytes, order);
  // The multiplications shift the two words of a group by different distances, to the right by the
  // high half of the product and to the left by the low half.
  const __m128i even =
      _mm_mulhi_epu16(_mm_and_si128(words, _mm_set1_epi32(0x0fc0fc00)), _mm_set1_epi32(0x04000040));
  const __m128i odd =
      _mm_mullo_epi16(_mm_and_si128(words, _mm_set1_epi32(0x003f03f0)), _mm_set1_epi32(0x01000010));
  return _mm_or_si128(even, odd);
}

}  // namespace

namespace ov {

bool base64_can_shuffle() {
  __builtin_cpu_init();
  return static_cast<int>(__builtin_cpu_supports("ssse3")) != 0;
}

__attribute__((target("ssse3"))) size_t base64_encode_by_shuffle(const Base64Alphabet& alphabet,
                                                                 const uint8_t* src, size_t len,
                                                                 char* dst) {
  // What to add to a value for its symbol, by the kind of the value: 0 for 26 to 51, 1 to 10 for
  // the digits, 11 and 12 for the last two symbols, 13 for 0 to 25.
  constexpr char kDigit = '0' - 52;
  const __m128i distances =
      _mm_setr_epi8('a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                    kDigit, kDigit, static_cast<char>(alphabet.symbol62 - 62),
                    static_cast<char>(alphabet.symbol63 - 63), 'A', 0, 0);
  size_t done = 0;
  // A block is read with the four bytes behind it.
  for (; len - done >= kBlockSymbols; done += kBlockBytes, dst += kBlockSymbols) {
    const __m128i values = split(load(src + done));
    const __m128i above51 = _mm_subs_epu8(values, _mm_set1_epi8(51));
    const __m128i below26 = _mm_cmpgt_epi8(_mm_set1_epi8(26), values);
    const __m128i kinds = _mm_or_si128(above51, _mm_and_si128(below26, _mm_set1_epi8(13)));
    const __m128i symbols = _mm_add_epi8(values, _mm_shuffle_epi8(distances, kinds));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), symbols);
  }
  return done;
}

}  // namespace ov
