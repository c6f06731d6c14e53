// The base64 encoder and decoder by shuffles of 16 bytes, which most processors have but not all.
// The wider registers of newer ones are left alone: the Windows compiler does not align what it
// spills of them.
#include <tmmintrin.h>

#include <cstring>

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

// The values of 16 symbols.
struct Values {
  __m128i bytes;
  __m128i known;  // all ones for each byte that is a symbol
};

// What is the same for all blocks of a text.
struct LastSymbols {
  __m128i symbol62, symbol63;
  explicit LastSymbols(const ov::Base64Alphabet& alphabet)
      : symbol62(_mm_set1_epi8(alphabet.symbol62)), symbol63(_mm_set1_epi8(alphabet.symbol63)) {}
};

// All ones where the byte lies between the two symbols, themselves included.
[[gnu::always_inline]] inline __m128i between(__m128i symbols, char first, char last) {
  const __m128i above = _mm_cmpgt_epi8(symbols, _mm_set1_epi8(static_cast<char>(first - 1)));
  return _mm_andnot_si128(_mm_cmpgt_epi8(symbols, _mm_set1_epi8(last)), above);
}

// Each value is the byte and the distance of its kind from its value. In line, or each block would
// pay for saving the registers.
[[gnu::always_inline]] inline Values read_symbols(const LastSymbols& last, const char* src) {
  const __m128i symbols = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
  const __m128i upper = between(symbols, 'A', 'Z');
  const __m128i lower = between(symbols, 'a', 'z');
  const __m128i digit = between(symbols, '0', '9');
  const __m128i is62 = _mm_cmpeq_epi8(symbols, last.symbol62);
  const __m128i is63 = _mm_cmpeq_epi8(symbols, last.symbol63);
  const __m128i letters = _mm_or_si128(_mm_and_si128(upper, _mm_set1_epi8(-'A')),
                                       _mm_and_si128(lower, _mm_set1_epi8(26 - 'a')));
  const __m128i plain =
      _mm_add_epi8(symbols, _mm_or_si128(letters, _mm_and_si128(digit, _mm_set1_epi8(52 - '0'))));
  const __m128i last_two = _mm_or_si128(is62, is63);
  // 62, and one more for the last symbol, whose mask is -1.
  const __m128i values62 = _mm_sub_epi8(_mm_set1_epi8(62), is63);
  return {_mm_or_si128(_mm_andnot_si128(last_two, plain), _mm_and_si128(last_two, values62)),
          _mm_or_si128(_mm_or_si128(upper, lower), _mm_or_si128(digit, last_two))};
}

[[gnu::always_inline]] inline bool all_known(const Values& values) {
  return _mm_movemask_epi8(values.known) == 0xffff;
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

size_t base64_symbol_blocks(const Base64Alphabet& alphabet, const char* src, size_t len) {
  const LastSymbols last(alphabet);
  size_t done = 0;
  for (; len - done >= kBlockSymbols; done += kBlockSymbols) {
    if (!all_known(read_symbols(last, src + done))) break;
  }
  return done;
}

__attribute__((target("ssse3"))) size_t base64_decode_by_shuffle(const Base64Alphabet& alphabet,
                                                                 const char* src, size_t len,
                                                                 uint8_t* dst) {
  const LastSymbols last(alphabet);
  size_t done = 0;
  for (; len - done >= kBlockSymbols; done += kBlockSymbols, dst += kBlockBytes) {
    const Values values = read_symbols(last, src + done);
    if (!all_known(values)) break;
    // Two values become 12 bits, two of those 24, and the three bytes of each 24 move together.
    const __m128i pairs = _mm_maddubs_epi16(values.bytes, _mm_set1_epi32(0x01400140));
    const __m128i groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
    const __m128i order = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m128i bytes = _mm_shuffle_epi8(groups, order);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), bytes);
    const int end = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 8));
    std::memcpy(dst + 8, &end, sizeof end);
  }
  return done;
}

}  // namespace ov
