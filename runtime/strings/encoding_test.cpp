#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/encodings_reference.h"

namespace {

using Lines = std::vector<std::string>;

using namespace ov::reference;

using Decoder = ov_rc (*)(const char*, size_t, void*, size_t, size_t*);

// Input and output have exactly the bytes told, so that a sanitizer sees any byte beyond.
Decoded decode(Decoder decoder, const std::string& text, size_t size) {
  const std::vector<char> input(text.begin(), text.end());
  std::vector<char> output(size, '#');
  size_t length = SIZE_MAX;
  static const char none = 0;
  char unused = 0;
  const ov_rc code = decoder(input.empty() ? &none : input.data(), input.size(),
                             output.empty() ? &unused : output.data(), output.size(), &length);
  if (code != 0) {
    EXPECT_EQ(SIZE_MAX, length);
    return {code, ""};
  }
  EXPECT_LE(length, size);
  if (length < size) {
    EXPECT_EQ(0, output[length]);
  }
  return {0, std::string(output.data(), length)};
}

Decoded decode(Decoder decoder, const std::string& text) {
  return decode(decoder, text, text.size() + 4);
}

ov_rc strict(const char* src, size_t len, void* dst, size_t size, size_t* out) {
  return ov_str_base64_to_buf_impl(src, len, dst, size, out, 0);
}

ov_rc lenient(const char* src, size_t len, void* dst, size_t size, size_t* out) {
  return ov_str_base64_to_buf_impl(src, len, dst, size, out, 1);
}

using Encoder = ov_rc (*)(const void*, size_t, char*, size_t);

std::string encode(Encoder encoder, const std::string& bytes) {
  const std::vector<char> input(bytes.begin(), bytes.end());
  std::vector<char> output(bytes.size() * 2 + 5, '#');
  EXPECT_EQ(0, encoder(input.data(), input.size(), output.data(), output.size()));
  return output.data();
}

std::vector<std::string> all_texts(const std::string& letters, size_t length) {
  std::vector<std::string> texts = {""};
  for (size_t at = 0; texts[at].size() < length; ++at) {
    for (const char letter : letters) texts.push_back(texts[at] + letter);
  }
  return texts;
}

// Long enough for the blocks of the fast ways and for what is left over.
TEST(Base64Test, TextMayBeDecodedWhereItStands) {
  std::mt19937 random(37);
  for (size_t length = 0; length < 120; ++length) {
    std::string bytes(length, '#');
    for (char& byte : bytes) byte = static_cast<char>(random());
    const auto expect_in_place = [&bytes](Decoder decoder, std::string text) {
      text.resize(text.size() + 4);
      size_t written = 0;
      ASSERT_EQ(0, decoder(text.data(), SIZE_MAX, text.data(), text.size(), &written));
      ASSERT_EQ(bytes, text.substr(0, written));
    };
    const std::string text = encode(&ov_str_buf_to_base64, bytes);
    expect_in_place(&ov_str_base64_to_buf, text);
    expect_in_place(&ov_str_mime_base64_to_buf, text);
    expect_in_place(&strict, text);
    expect_in_place(&ov_str_base64url_to_buf, encode(&ov_str_buf_to_base64url, bytes));
    expect_in_place(&ov_str_base16_to_buf, encode(&ov_str_buf_to_base16, bytes));
  }
}

TEST(Base64Test, EveryInputOfUpToTwoBytesEncodesAsTheSlowEncoder) {
  for (int first = -1; first < 256; ++first) {
    for (int second = -1; second < 256; ++second) {
      std::string bytes;
      if (first >= 0) bytes += static_cast<char>(first);
      if (first >= 0 && second >= 0) bytes += static_cast<char>(second);
      ASSERT_EQ(slow_encode(bytes, kStandardAlphabet, true), encode(&ov_str_buf_to_base64, bytes));
      ASSERT_EQ(slow_encode(bytes, kUrlAlphabet, false), encode(&ov_str_buf_to_base64url, bytes));
    }
  }
}

TEST(Base64Test, RandomBytesEncodeAsTheSlowEncoderAndComeBack) {
  std::mt19937 random(3);
  for (size_t length = 0; length < 200; ++length) {
    std::string bytes(length, 0);
    for (char& byte : bytes) byte = static_cast<char>(random());
    const std::string text = encode(&ov_str_buf_to_base64, bytes);
    ASSERT_EQ(slow_encode(bytes, kStandardAlphabet, true), text);
    const std::string url = encode(&ov_str_buf_to_base64url, bytes);
    ASSERT_EQ(slow_encode(bytes, kUrlAlphabet, false), url);
    for (const Decoder decoder :
         {&ov_str_base64_to_buf, &ov_str_mime_base64_to_buf, &strict, &lenient}) {
      ASSERT_EQ((Decoded{0, bytes}), decode(decoder, text));
    }
    ASSERT_EQ((Decoded{0, bytes}), decode(&ov_str_base64url_to_buf, url));
  }
}

TEST(Base64Test, EncodersNeedRoomForPaddingAndTerminator) {
  char text[16] = "###############";
  for (const Encoder encoder : {&ov_str_buf_to_base64, &ov_str_buf_to_base64url}) {
    EXPECT_EQ(OV_EBUFFER, encoder("a", 1, text, 4));
    EXPECT_EQ('#', text[0]);
    EXPECT_EQ(0, encoder("a", 1, text, 5));
    EXPECT_EQ(OV_EBUFFER, encoder("abcd", 4, text, 8));
    EXPECT_EQ(0, encoder("abcd", 4, text, 9));
    EXPECT_EQ(OV_EBUFFER, encoder("abcd", SIZE_MAX, text, sizeof text));
    EXPECT_EQ(OV_EBUFFER, encoder("abcd", SIZE_MAX - 1, text, SIZE_MAX));
    text[0] = '#';
  }
}

TEST(Base64Test, EncodersTakeEmptyInputAndRefuseNull) {
  char text[] = "#";
  for (const Encoder encoder : {&ov_str_buf_to_base64, &ov_str_buf_to_base64url}) {
    EXPECT_EQ(OV_EINVAL, encoder("", 0, text, 0));
    EXPECT_EQ('#', text[0]);
    EXPECT_EQ(OV_EBUFFER, encoder("a", 1, text, 0));
    EXPECT_EQ(0, encoder("", 0, text, 1));
    EXPECT_EQ(0, text[0]);
    EXPECT_EQ(0, encoder(nullptr, 0, text, 1));
    EXPECT_EQ(OV_EINVAL, encoder(nullptr, 1, text, 9));
    EXPECT_EQ(OV_EINVAL, encoder("a", 1, nullptr, 9));
    text[0] = '#';
  }
}

TEST(Base64Test, DocumentedInputsDecode) {
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64_to_buf, "QQ=="));
  EXPECT_EQ(kRefused, decode(&ov_str_base64_to_buf, "QQ="));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64_to_buf, "Q Q = ="));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64_to_buf, "QQ=Q"));
  EXPECT_EQ((Decoded{0, "AA"}), decode(&ov_str_base64_to_buf, "QQ==QQ=="));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64_to_buf, "QQ===QQQ"));
  EXPECT_EQ(kRefused, decode(&ov_str_base64_to_buf, "Q=QQ"));
  EXPECT_EQ((Decoded{0, ""}), decode(&ov_str_base64_to_buf, "===="));
  EXPECT_EQ((Decoded{0, ""}), decode(&ov_str_base64_to_buf, " \r\n\t"));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_mime_base64_to_buf, "QQ==!"));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_mime_base64_to_buf, "!Q-Q"));
  EXPECT_EQ(kRefused, decode(&ov_str_mime_base64_to_buf, "Q"));
  EXPECT_EQ((Decoded{0, ""}), decode(&ov_str_mime_base64_to_buf, "=!"));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_mime_base64_to_buf, std::string("QQ\0QQ", 5)));
  EXPECT_EQ(kRefused, decode(&strict, "Q Q="));
  EXPECT_EQ(kRefused, decode(&strict, "QQ"));
  EXPECT_EQ((Decoded{0, "A"}), decode(&lenient, "Q Q"));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64url_to_buf, "QQ"));
  EXPECT_EQ(kRefused, decode(&ov_str_base64url_to_buf, "QQ=="));
  EXPECT_EQ(kRefused, decode(&ov_str_base64url_to_buf, "Q"));
  EXPECT_EQ(kRefused, decode(&ov_str_base64url_to_buf, "QQQQQ"));
  EXPECT_EQ(kRefused, decode(&ov_str_base64url_to_buf, "Q+"));
  EXPECT_EQ((Decoded{0, ""}), decode(&ov_str_base64url_to_buf, ""));
}

TEST(Base64Test, EveryShortTextDecodesAsTheSlowDecoders) {
  ov::CapturedLog log;
  for (const std::string& text : all_texts(std::string("Qz+_=! ") + '\0', 5)) {
    ASSERT_EQ(slow_blanks(text), decode(&ov_str_base64_to_buf, text)) << text;
    ASSERT_EQ(slow_mime(text), decode(&ov_str_mime_base64_to_buf, text)) << text;
    ASSERT_EQ(slow_strict(text), decode(&strict, text)) << text;
    ASSERT_EQ(slow_mime(text), decode(&lenient, text)) << text;
    ASSERT_EQ(slow_url(text), decode(&ov_str_base64url_to_buf, text)) << text;
    log.take();
  }
}

TEST(Base64Test, RandomLongTextsDecodeAsTheSlowDecoders) {
  ov::CapturedLog log;
  std::mt19937 random(5);
  for (int round = 0; round < 20000; ++round) {
    const bool wild = round % 2 == 0;
    const std::string letters = kStandardAlphabet + (wild ? "=-_! \n" : "");
    std::string text(random() % 40, 'A');
    for (char& c : text) c = letters[random() % letters.size()];
    ASSERT_EQ(slow_blanks(text), decode(&ov_str_base64_to_buf, text)) << text;
    ASSERT_EQ(slow_mime(text), decode(&ov_str_mime_base64_to_buf, text)) << text;
    ASSERT_EQ(slow_strict(text), decode(&strict, text)) << text;
    ASSERT_EQ(slow_url(text), decode(&ov_str_base64url_to_buf, text)) << text;
    log.take();
  }
}

TEST(Base64Test, DecodersNeedTheirRoom) {
  const Decoded no_room = {OV_EBUFFER, ""};
  EXPECT_EQ(no_room, decode(&ov_str_base64_to_buf, "QQ==", 3));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64_to_buf, "QQ==", 4));
  EXPECT_EQ(no_room, decode(&ov_str_base64_to_buf, "", 0));
  EXPECT_EQ(no_room, decode(&strict, "QQ==", 3));
  EXPECT_EQ((Decoded{0, "A"}), decode(&strict, "QQ==", 4));
  EXPECT_EQ(no_room, decode(&ov_str_base64url_to_buf, "QQ", 3));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_base64url_to_buf, "QQ", 4));
  EXPECT_EQ((Decoded{0, ""}), decode(&ov_str_base64url_to_buf, "", 0));
  EXPECT_EQ((Decoded{0, "A"}), decode(&ov_str_mime_base64_to_buf, "QQ==", 1));
  EXPECT_EQ(no_room, decode(&ov_str_mime_base64_to_buf, "QQ==", 0));
  EXPECT_EQ(no_room, decode(&ov_str_mime_base64_to_buf, "QUFBQQ==", 3));
}

TEST(Base64Test, LengthOfAllOnesMeansUpToTheTerminator) {
  char bytes[8];
  size_t length = 0;
  for (const Decoder decoder :
       {&ov_str_base64_to_buf, &ov_str_mime_base64_to_buf, &strict, &lenient}) {
    EXPECT_EQ(0, decoder("QUI=", SIZE_MAX, bytes, sizeof bytes, &length));
    EXPECT_EQ(2u, length);
    EXPECT_STREQ("AB", bytes);
  }
  EXPECT_EQ(0, ov_str_base64url_to_buf("QUI", SIZE_MAX, bytes, sizeof bytes, nullptr));
  EXPECT_STREQ("AB", bytes);
}

TEST(Base64Test, DecodersRefuseNull) {
  char bytes[8];
  for (const Decoder decoder : {&ov_str_base64_to_buf, &ov_str_mime_base64_to_buf, &strict,
                                &lenient, &ov_str_base64url_to_buf}) {
    EXPECT_EQ(OV_EINVAL, decoder(nullptr, 4, bytes, sizeof bytes, nullptr));
    EXPECT_EQ(OV_EINVAL, decoder("QQ==", 4, nullptr, 8, nullptr));
  }
}

TEST(Base64Test, IllegalCharacterIsLogged) {
  ov::CapturedLog log;
  EXPECT_EQ(kRefused, decode(&ov_str_base64_to_buf, "QQ%="));
  EXPECT_EQ(Lines{"ERR ov_str_base64_to_buf(): illegal input char %"}, log.take());
  EXPECT_EQ(kRefused, decode(&strict, "QQ%="));
  EXPECT_EQ(Lines{}, log.take());
}

TEST(Base64Test, GroupsMoveTheCursor) {
  uint8_t bytes[4] = {};
  uint8_t* cursor = bytes;
  EXPECT_EQ(0, ov_str_base64_chars_to_buf("QUFB", &cursor, bytes + 4));
  EXPECT_EQ(bytes + 3, cursor);
  EXPECT_EQ(OV_EBUFFER, ov_str_base64_chars_to_buf("QUI=", &cursor, bytes + 4));
  EXPECT_EQ(bytes + 3, cursor);
  EXPECT_EQ(0, ov_str_base64_chars_to_buf("Qg=?", &cursor, bytes + 4));
  EXPECT_EQ(bytes + 4, cursor);
  EXPECT_EQ(0, std::memcmp("AAAB", bytes, 4));
  EXPECT_EQ(0, ov_str_base64_chars_to_buf("=???", &cursor, bytes + 4));
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("Q===", &cursor, bytes + 4));
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("Q?==", &cursor, bytes + 4));
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("QQ?=", &cursor, bytes + 4));
  EXPECT_EQ(OV_EBUFFER, ov_str_base64_chars_to_buf("QQ==", &cursor, bytes));
  EXPECT_EQ(bytes + 4, cursor);
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf(nullptr, &cursor, bytes + 4));
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("QQ==", nullptr, bytes + 4));
}

TEST(Base64Test, NextCharacterSkipsAllOutsideTheAlphabet) {
  const char text[] = "!Q=\nz+\0A";
  const char* at = text;
  const char* const end = text + sizeof text - 1;
  char four[4];
  EXPECT_EQ('Q', ov_str_base64_next_char(&at, end));
  ov_str_base64_next_chars(&at, end, four);
  EXPECT_EQ("z+==", std::string(four, 4));
  EXPECT_EQ(text + 6, at);
  at = text + 7;
  EXPECT_EQ('A', ov_str_base64_next_char(&at, end));
  EXPECT_EQ('=', ov_str_base64_next_char(&at, end));
  EXPECT_EQ(end, at);
  EXPECT_EQ('=', ov_str_base64_next_char(nullptr, end));
  at = nullptr;
  EXPECT_EQ('=', ov_str_base64_next_char(&at, end));
}

TEST(Base64Test, ValidCharactersAreTheAlphabetAndTheTerminator) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool expected = c == 0 || kStandardAlphabet.find(c) != std::string::npos;
    EXPECT_EQ(expected ? 1 : 0, ov_str_base64_valid_char(c)) << byte;
  }
}

TEST(Base16Test, EveryShortTextAndRandomLongOnesAgreeWithTheSlowDecoder) {
  ov::CapturedLog log;
  std::vector<std::string> texts = all_texts(std::string("09afAFgG/:@`") + '\0', 4);
  std::mt19937 random(29);
  for (int round = 0; round < 20000; ++round) {
    const std::string letters =
        round % 4 == 0 ? "0123456789abcdefABCDEFg" : "0123456789abcdefABCDEF";
    std::string text(random() % 60, '0');
    for (char& c : text) c = letters[random() % letters.size()];
    texts.push_back(text);
  }
  for (const std::string& text : texts) {
    std::vector<uint8_t> bytes(text.size() / 2 + 1);
    const std::vector<char> exact(text.begin(), text.end());
    const char none = 0;
    size_t length = 0;
    Decoded decoded = {ov_str_base16_to_buf(text.empty() ? &none : exact.data(), text.size(),
                                            bytes.data(), text.size() / 2, &length),
                       ""};
    if (decoded.code == 0) {
      decoded.bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
      ASSERT_EQ(slow_base16(decoded.bytes), encode(&ov_str_buf_to_base16, decoded.bytes));
    }
    ASSERT_EQ(slow_base16_decode(text), decoded) << text;
    log.take();
  }
}

TEST(Base16Test, LookupTableHoldsDigitsOfEitherCase) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    const bool digit = byte != 0 && std::strchr("0123456789abcdefABCDEF", byte) != nullptr;
    EXPECT_EQ(digit ? std::stoul(text, nullptr, 16) : 255u, _ov_str_base16_lookup[byte]) << byte;
  }
}

TEST(Base16Test, EveryByteEncodesInUpperCaseAndComesBackFromEitherCase) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto value = static_cast<uint8_t>(byte);
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02X", byte);
    char text[3];
    EXPECT_EQ(0, ov_str_buf_to_base16(&value, 1, text, sizeof text));
    EXPECT_STREQ(expected, text);
    std::snprintf(expected, sizeof expected, "%02x", byte);
    uint8_t back = 0;
    size_t length = 0;
    EXPECT_EQ(0, ov_str_base16_to_buf(text, 2, &back, 1, &length));
    EXPECT_EQ(value, back);
    EXPECT_EQ(0, ov_str_base16_to_buf(expected, SIZE_MAX, &back, 1, &length));
    EXPECT_EQ(value, back);
    EXPECT_EQ(1u, length);
  }
}

TEST(Base16Test, EncoderNeedsTwoBytesForOneAndATerminator) {
  char text[] = "######";
  EXPECT_EQ(OV_EBUFFER, ov_str_buf_to_base16("ab", 2, text, 4));
  EXPECT_STREQ("######", text);
  EXPECT_EQ(0, ov_str_buf_to_base16("ab", 2, text, 5));
  EXPECT_STREQ("6162", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_buf_to_base16("", 0, text, 0));
  EXPECT_EQ(0, ov_str_buf_to_base16("", 0, text, 1));
  EXPECT_STREQ("", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_buf_to_base16("ab", SIZE_MAX, text, SIZE_MAX));
  EXPECT_EQ(OV_EINVAL, ov_str_buf_to_base16(nullptr, 1, text, 5));
  EXPECT_EQ(OV_EINVAL, ov_str_buf_to_base16("ab", 2, nullptr, 5));
}

TEST(Base16Test, DecoderTellsTheLengthBeforeItLooksAtTheRoom) {
  char bytes[2] = {'#', '#'};
  size_t length = 99;
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf("616", SIZE_MAX, bytes, 2, &length));
  EXPECT_EQ(99u, length);
  EXPECT_EQ(OV_EBUFFER, ov_str_base16_to_buf("616263", SIZE_MAX, bytes, 2, &length));
  EXPECT_EQ(3u, length);
  EXPECT_EQ(OV_EBUFFER, ov_str_base16_to_buf("6162", 4, nullptr, 0, &length));
  EXPECT_EQ(2u, length);
  EXPECT_EQ(0, ov_str_base16_to_buf("6162", 4, bytes, 2, nullptr));
  EXPECT_EQ("ab", std::string(bytes, 2));
  EXPECT_EQ(0, ov_str_base16_to_buf("", 0, bytes, 0, &length));
  EXPECT_EQ(0u, length);
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf(nullptr, 2, bytes, 2, &length));
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf("61", 2, nullptr, 2, &length));
}

TEST(Base16Test, BadCharacterIsLoggedAndEarlierBytesStay) {
  ov::CapturedLog log;
  char bytes[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf("616x", 4, bytes, sizeof bytes, nullptr));
  EXPECT_EQ(Lines{"ERR Invalid char in hex string: 'x' (0x78)"}, log.take());
  EXPECT_EQ("a###", std::string(bytes, 4));
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf("g1", 2, bytes, sizeof bytes, nullptr));
  EXPECT_EQ(Lines{"ERR Invalid char in hex string: 'g' (0x67)"}, log.take());
  EXPECT_EQ(OV_EINVAL, ov_str_base16_to_buf("\xe9"
                                            "1",
                                            2, bytes, sizeof bytes, nullptr));
  EXPECT_EQ(Lines{"ERR Invalid char in hex string: '\xe9' (0xE9)"}, log.take());
}

TEST(Base64Test, GroupsRefuseACursorOutsideTheBuffer) {
  uint8_t bytes[4] = {};
  uint8_t* cursor = bytes + 3;
  EXPECT_EQ(OV_EBUFFER, ov_str_base64_chars_to_buf("QQ==", &cursor, bytes + 2));
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("QQ==", &cursor, nullptr));
  cursor = nullptr;
  EXPECT_EQ(OV_EINVAL, ov_str_base64_chars_to_buf("QQ==", &cursor, bytes));
  const char* at = "QQ";
  ov_str_base64_next_chars(&at, at + 2, nullptr);
}

}  // namespace
