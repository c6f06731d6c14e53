// The ways of the base64 encoder, each by itself.
#include "runtime/strings/base64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/support/runtime/encodings_reference.h"

namespace {

using namespace ov::reference;

// One way of the encoder against the slow one. The source has exactly the bytes told.
void compare_encoder(const std::string& symbols, size_t length, std::mt19937& random,
                     size_t (*encode_with)(const ov::Base64Alphabet&, const uint8_t*, size_t,
                                           char*)) {
  const ov::Base64Alphabet alphabet(symbols[62], symbols[63]);
  std::vector<uint8_t> bytes(length);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  std::vector<char> text(length / 3 * 4 + 5, '#');
  const size_t done = encode_with(alphabet, bytes.data(), length, text.data());
  ASSERT_LE(done, length);
  const std::string expected =
      slow_encode(std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(done)),
                  symbols, false);
  ASSERT_EQ(expected, std::string(text.data(), expected.size()));
  ASSERT_EQ('#', text[expected.size()]);
}

size_t encode_by_table(const ov::Base64Alphabet& alphabet, const uint8_t* src, size_t len,
                       char* dst) {
  ov::base64_encode_by_table(alphabet, src, len, dst);
  return len;
}

TEST(Base64EncoderTest, EveryWayOfTheEncoderAgreesWithTheSlowEncoder) {
  std::mt19937 random(23);
  for (size_t length = 0; length < 260; ++length) {
    for (const std::string& symbols : {kStandardAlphabet, kUrlAlphabet}) {
      for (int round = 0; round < 4; ++round) {
        ASSERT_NO_FATAL_FAILURE(compare_encoder(symbols, length, random, &encode_by_table));
        ASSERT_TRUE(ov::base64_can_shuffle()) << "this processor cannot show it";
        ASSERT_NO_FATAL_FAILURE(
            compare_encoder(symbols, length, random, &ov::base64_encode_by_shuffle));
      }
    }
  }
}

TEST(Base64EncoderTest, ShufflesEncodeEveryPairOfValuesInEveryPlace) {
  ASSERT_TRUE(ov::base64_can_shuffle()) << "this processor cannot show it";
  // Two neighbours of 12 bits each in all 8 places of a block of 12 bytes.
  for (const std::string& symbols : {kStandardAlphabet, kUrlAlphabet}) {
    const ov::Base64Alphabet alphabet(symbols[62], symbols[63]);
    for (uint32_t pair = 0; pair < 4096; ++pair) {
      std::string expected(16, 'A');
      std::string bytes(16, '\0');
      const uint32_t group = pair << 12 | pair;
      for (size_t place = 0; place < 4; ++place) {
        for (size_t i = 0; i < 3; ++i) {
          bytes[place * 3 + i] = static_cast<char>(group >> (16 - 8 * i));
        }
        for (size_t i = 0; i < 4; ++i) {
          expected[place * 4 + i] = symbols[i % 2 == 0 ? pair >> 6 : pair & 63];
        }
      }
      std::string text(16, '#');
      ASSERT_EQ(12u,
                ov::base64_encode_by_shuffle(
                    alphabet, reinterpret_cast<const uint8_t*>(bytes.data()), 16, text.data()));
      ASSERT_EQ(expected, text);
    }
  }
}

// One way of the decoder on a text whose last groups may hold other characters.
void compare_decoder(const std::string& symbols, std::string text, std::mt19937& random,
                     size_t block,
                     size_t (*decode_with)(const ov::Base64Alphabet&, const char*, size_t,
                                           uint8_t*)) {
  const ov::Base64Alphabet alphabet(symbols[62], symbols[63]);
  size_t good = text.size() / block * block;
  if (!text.empty() && random() % 2 == 0) {
    const size_t fault = random() % text.size();
    do {
      text[fault] = static_cast<char>(random());
    } while (symbols.find(text[fault]) != std::string::npos);
    good = std::min(good, fault / block * block);
  }
  const std::vector<char> exact(text.begin(), text.end());
  std::vector<uint8_t> bytes(good / 4 * 3 + 1, '#');
  ASSERT_EQ(good, decode_with(alphabet, exact.data(), exact.size(), bytes.data()));
  ASSERT_EQ('#', bytes.back());
  const std::string decoded(bytes.begin(), bytes.end() - 1);
  ASSERT_EQ(text.substr(0, good), slow_encode(decoded, symbols, false));
}

TEST(Base64DecoderTest, EveryWayOfTheDecoderStopsAtTheGroupAtFault) {
  ASSERT_TRUE(ov::base64_can_shuffle()) << "this processor cannot show it";
  std::mt19937 random(29);
  for (int round = 0; round < 4000; ++round) {
    const std::string& symbols = round % 2 == 0 ? kStandardAlphabet : kUrlAlphabet;
    std::string text(random() % 120, 'A');
    for (char& c : text) c = symbols[random() % 64];
    ASSERT_NO_FATAL_FAILURE(compare_decoder(symbols, text, random, 4, &ov::base64_decode_by_table));
    ASSERT_NO_FATAL_FAILURE(compare_decoder(symbols, text, random, 4, &ov::base64_decode_run));
    ASSERT_NO_FATAL_FAILURE(
        compare_decoder(symbols, text, random, 16, &ov::base64_decode_by_shuffle));
  }
}

TEST(Base64DecoderTest, BlocksOfSymbolsEndAtAnyOtherByteInAnyPlace) {
  const ov::Base64Alphabet alphabet('+', '/');
  for (int byte = 0; byte < 256; ++byte) {
    for (size_t place = 0; place < 48; ++place) {
      std::string text(48, 'z');
      text[place] = static_cast<char>(byte);
      const bool symbol = kStandardAlphabet.find(text[place]) != std::string::npos;
      ASSERT_EQ(symbol ? 48 : place / 16 * 16,
                ov::base64_symbol_blocks(alphabet, text.data(), text.size()));
    }
  }
}

TEST(Base64EncoderTest, ShufflesLeaveAtMost15Bytes) {
  ASSERT_TRUE(ov::base64_can_shuffle()) << "this processor cannot show it";
  const ov::Base64Alphabet alphabet('+', '/');
  const std::vector<uint8_t> bytes(100);
  char text[200];
  for (size_t length = 0; length <= 100; ++length) {
    const size_t done = ov::base64_encode_by_shuffle(alphabet, bytes.data(), length, text);
    EXPECT_EQ(length < 16 ? 0 : (length - 4) / 12 * 12, done) << length;
  }
}

}  // namespace
