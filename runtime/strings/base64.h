// What the two base64 alphabets share: tables, and the loops of the encoder and the decoder.
// Constant data only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ov {

constexpr uint8_t kBase64None = 255;
constexpr uint8_t kBase64Last = 63;
// Symbols that are looked at together.
constexpr size_t kBase64Block = 16;

struct Base64Alphabet {
  // The two symbols for each 12 bits, so that three bytes cost two look-ups.
  std::array<std::array<char, 2>, 4096> pairs{};
  // The value of each symbol, kBase64None for all other bytes.
  std::array<uint8_t, 256> values{};
  // The two symbols in which the alphabets differ.
  char symbol62;
  char symbol63;

  constexpr Base64Alphabet(char symbol_62, char symbol_63)
      : symbol62(symbol_62), symbol63(symbol_63) {
    std::array<char, 64> symbols{};
    for (size_t i = 0; i < 26; ++i) {
      symbols[i] = static_cast<char>('A' + i);
      symbols[26 + i] = static_cast<char>('a' + i);
    }
    for (size_t i = 0; i < 10; ++i) symbols[52 + i] = static_cast<char>('0' + i);
    symbols[62] = symbol62;
    symbols[63] = symbol63;
    values.fill(kBase64None);
    for (size_t i = 0; i < 64; ++i) {
      values[static_cast<uint8_t>(symbols[i])] = static_cast<uint8_t>(i);
      for (size_t n = 0; n < 64; ++n) pairs[i * 64 + n] = {symbols[i], symbols[n]};
    }
  }

  constexpr uint8_t value(char symbol) const { return values[static_cast<uint8_t>(symbol)]; }
};

// The two encoders need room for padding and a terminator, whether or not they write padding.
constexpr bool base64_fits(size_t len, size_t dst_size) {
  const size_t groups = len / 3 + (len % 3 != 0 ? 1 : 0);
  return dst_size > 0 && groups <= (dst_size - 1) / 4;
}

// Writes the symbols of `len` bytes, without padding and terminator; the end of what it wrote. In
// the fastest way that this processor has.
char* base64_encode(const Base64Alphabet& alphabet, const uint8_t* src, size_t len, char* dst);

// The same by look-ups alone.
char* base64_encode_by_table(const Base64Alphabet& alphabet, const uint8_t* src, size_t len,
                             char* dst);

// The same for whole blocks of 12 bytes, by shuffles of 16 bytes; the number of bytes encoded, with
// at most 15 left over. Only where the processor can.
bool base64_can_shuffle();
size_t base64_encode_by_shuffle(const Base64Alphabet& alphabet, const uint8_t* src, size_t len,
                                char* dst);

// Decodes from the start of `len` symbols on, group by group, up to the first group that holds any
// other character; the number of symbols decoded, a multiple of 4. Writes three bytes for each
// group and nothing else. In the fastest way that this processor has.
size_t base64_decode_run(const Base64Alphabet& alphabet, const char* src, size_t len, uint8_t* dst);

// The same by look-ups alone.
size_t base64_decode_by_table(const Base64Alphabet& alphabet, const char* src, size_t len,
                              uint8_t* dst);

// The same for whole blocks of 16 symbols, up to the first that holds any other character. Only
// where the processor can shuffle.
size_t base64_decode_by_shuffle(const Base64Alphabet& alphabet, const char* src, size_t len,
                                uint8_t* dst);

// Number of characters at the start that are in the alphabet, counted in whole blocks of 16.
size_t base64_symbol_blocks(const Base64Alphabet& alphabet, const char* src, size_t len);

}  // namespace ov
