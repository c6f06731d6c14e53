// What the base runtime's conversions cost, against memcpy and the plain loops that a reader would
// write first:
// - base64 of 50 MiB and of 64 KiB / memcpy of the same bytes;
// - the speed of decoding 50 MiB / the speed of a loop with one table;
// - the speed of UTF-8 to UTF-16 and back, 10 MB of ASCII, mixed and CJK text / a scalar loop that
//   makes the same checks.
// On Windows through the library.
// usage: encodings_bench

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "runtime/ov_strings.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr size_t kLarge = size_t{50} << 20;
constexpr size_t kSmall = size_t{64} << 10;
constexpr size_t kText = 10'000'000;
constexpr int kTurns = 21;

constexpr char kSymbols[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t kNoSymbol = 0xFF;

std::vector<char> randomBytes(size_t size) {
  std::vector<char> bytes(size);
  uint32_t state = 1;
  for (char& byte : bytes) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

size_t encodedSize(size_t size) {
  return (size + 2) / 3 * 4;
}

void encodeRow(const char* name, size_t size, int repeats, const Aim& aim) {
  const std::vector<char> input = randomBytes(size);
  std::vector<char> output(encodedSize(size) + 1);
  std::vector<char> copied(size);
  const auto encode = [&] {
    require(ov_str_buf_to_base64(input.data(), size, output.data(), output.size()) == 0, "encode");
    keep(output);
  };
  const auto copy = [&] {
    std::memcpy(copied.data(), input.data(), size);
    keep(copied);
  };
  printRow(name, ratio(kTurns, times(repeats, encode), times(repeats, copy)), aim);
}

std::array<uint8_t, 256> symbolValues() {
  std::array<uint8_t, 256> values;
  values.fill(kNoSymbol);
  for (uint8_t i = 0; i < 64; ++i) values[static_cast<uint8_t>(kSymbols[i])] = i;
  return values;
}

// Four symbols at a time; the padded end is left to the caller. False for another character.
bool decodeByTable(const char* src, size_t groups, uint8_t* dst) {
  static const std::array<uint8_t, 256> kValues = symbolValues();
  for (size_t i = 0; i < groups; ++i, src += 4, dst += 3) {
    const uint8_t a = kValues[static_cast<uint8_t>(src[0])];
    const uint8_t b = kValues[static_cast<uint8_t>(src[1])];
    const uint8_t c = kValues[static_cast<uint8_t>(src[2])];
    const uint8_t d = kValues[static_cast<uint8_t>(src[3])];
    if ((a | b | c | d) > 63) return false;
    const uint32_t bits = uint32_t{a} << 18 | uint32_t{b} << 12 | uint32_t{c} << 6 | uint32_t{d};
    dst[0] = static_cast<uint8_t>(bits >> 16);
    dst[1] = static_cast<uint8_t>(bits >> 8);
    dst[2] = static_cast<uint8_t>(bits);
  }
  return true;
}

void decodeRow() {
  constexpr size_t kGroups = kLarge / 3;
  const std::vector<char> input = randomBytes(kGroups * 3);
  std::vector<char> text(encodedSize(input.size()) + 1);
  require(ov_str_buf_to_base64(input.data(), input.size(), text.data(), text.size()) == 0,
          "encode");
  std::vector<char> ours(input.size() + 1);
  std::vector<uint8_t> plain(input.size());
  const auto byTable = [&] { require(decodeByTable(text.data(), kGroups, plain.data()), "table"); };
  const auto decode = [&] {
    size_t length = 0;
    require(ov_str_base64_to_buf(text.data(), text.size() - 1, ours.data(), ours.size(), &length) ==
                    0 &&
                length == input.size(),
            "decode");
  };
  printRow("base64 decoding of 50 MiB, speed / a table loop's", ratio(kTurns, byTable, decode),
           Aim::atLeast(1));
  require(std::memcmp(ours.data(), plain.data(), plain.size()) == 0, "decoded bytes");
}

// One code point of well-formed UTF-8 from `at` on, which moves behind it; false for ill-formed
// text. Four ranges by the first byte, and the two forms that are too long or surrogates.
bool takeCodePoint(const uint8_t*& at, uint32_t& point) {
  const uint32_t first = *at++;
  if (first < 0x80) {
    point = first;
    return true;
  }
  if (first < 0xC2 || first > 0xF4) return false;
  const int more = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
  point = first & (0x3Fu >> more);
  for (int i = 0; i < more; ++i) {
    if ((*at & 0xC0) != 0x80) return false;
    point = point << 6 | (*at++ & 0x3Fu);
  }
  if (more == 2) return point >= 0x800 && (point < 0xD800 || point > 0xDFFF);
  return more == 1 || (point >= 0x10000 && point <= 0x10FFFF);
}

bool toUtf16Plainly(const char* text, uint16_t* dst) {
  const auto* at = reinterpret_cast<const uint8_t*>(text);
  for (uint32_t point = 1; point != 0;) {
    if (!takeCodePoint(at, point)) return false;
    if (point < 0x10000) {
      *dst++ = static_cast<uint16_t>(point);
    } else {
      *dst++ = static_cast<uint16_t>(0xD7C0 + (point >> 10));
      *dst++ = static_cast<uint16_t>(0xDC00 + (point & 0x3FF));
    }
  }
  return true;
}

void putUtf8(uint32_t point, char*& dst) {
  const auto put = [&dst](uint32_t byte) { *dst++ = static_cast<char>(byte); };
  if (point < 0x80) return put(point);
  if (point < 0x800) {
    put(0xC0 | point >> 6);
  } else if (point < 0x10000) {
    put(0xE0 | point >> 12);
    put(0x80 | (point >> 6 & 0x3F));
  } else {
    put(0xF0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3F));
    put(0x80 | (point >> 6 & 0x3F));
  }
  put(0x80 | (point & 0x3F));
}

bool toUtf8Plainly(const uint16_t* at, char* dst) {
  for (; *at != 0; ++at) {
    uint32_t point = *at;
    if (point >= 0xD800 && point <= 0xDFFF) {
      if (point > 0xDBFF || (at[1] & 0xFC00) != 0xDC00) return false;
      point = ((point - 0xD7C0) << 10) + (*++at & 0x3FFu);
    }
    putUtf8(point, dst);
  }
  *dst = '\0';
  return true;
}

void utfRows(const std::string& kind, const std::string& piece) {
  std::string text;
  while (text.size() + piece.size() <= kText) text += piece;
  std::vector<uint16_t> units(text.size() + 1);
  std::vector<char> bytes(text.size() + 1);
  const auto toUnits = [&] {
    size_t size = units.size() * sizeof(uint16_t);
    require(ov_utf8_to_utf16(text.c_str(), 0, units.data(), &size) == 0, "to UTF-16");
  };
  const auto plainlyToUnits = [&] {
    require(toUtf16Plainly(text.c_str(), units.data()), "plainly to UTF-16");
  };
  printRow("UTF-8 to UTF-16, 10 MB of " + kind + ", speed / a scalar loop's",
           ratio(kTurns, plainlyToUnits, toUnits), Aim::atLeast(1));
  const auto toBytes = [&] {
    size_t size = bytes.size();
    require(ov_utf16_to_utf8(units.data(), 0, bytes.data(), &size) == 0, "to UTF-8");
  };
  const auto plainlyToBytes = [&] {
    require(toUtf8Plainly(units.data(), bytes.data()), "plainly to UTF-8");
  };
  printRow("UTF-16 to UTF-8, 10 MB of " + kind + ", speed / a scalar loop's",
           ratio(kTurns, plainlyToBytes, toBytes), Aim::atLeast(1));
  require(text == bytes.data(), "there and back");
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    encodeRow("base64 of 50 MiB / memcpy", kLarge, 1, Aim::atMost(1.7));
    encodeRow("base64 of 64 KiB / memcpy", kSmall, 200, {});
    decodeRow();
    utfRows("ASCII", "The quick brown fox jumps over the lazy dog. ");
    utfRows("mixed",
            "Gr\xC3\xB6\xC3\x9F"
            "e \xE2\x82\xAC 5, \xE6\x96\x87\xE5\xAD\x97 \xF0\x9F\x98\x80 and so on. ");
    utfRows("CJK", "\xE6\x96\x87\xE5\xAD\x97\xE8\xA9\xB1");
  });
}
