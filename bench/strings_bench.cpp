// What the text functions cost, as ratios within one run:
// - base64 of 50 MiB against memcpy and against an encoder with a table of single symbols;
// - the test of 50 MiB of UTF-8, ASCII and mixed, against memcpy;
// - a wildcard pattern with many stars over a long text, against one over half of it;
// - the canonical form of a path of 500 bytes, against copying it.
// usage: strings_bench

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/base64.h"

namespace Vantrel::Web {
namespace {

using Bench::print;
using Bench::shortest;

constexpr size_t kSize = size_t{50} << 20;
constexpr size_t kPathSize = 500;
constexpr size_t kStarsText = 100000;
constexpr int kRepeats = 10000;

// Results go here, so that no work is left out.
volatile int64_t sink;

void expect(bool holds, const char* what) {
  if (!holds) std::printf("wrong result: %s\n", what);
}

// One symbol for 6 bits, as the plainest encoder has it.
void encodeBySymbols(const uint8_t* src, size_t length, char* dst) {
  static constexpr char kSymbols[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (; length >= 3; length -= 3, src += 3) {
    *dst++ = kSymbols[src[0] >> 2];
    *dst++ = kSymbols[(src[0] & 3) << 4 | src[1] >> 4];
    *dst++ = kSymbols[(src[1] & 15) << 2 | src[2] >> 6];
    *dst++ = kSymbols[src[2] & 63];
  }
  if (length > 0) {
    const int second = length == 2 ? src[1] : 0;
    *dst++ = kSymbols[src[0] >> 2];
    *dst++ = kSymbols[(src[0] & 3) << 4 | second >> 4];
    *dst++ = length == 2 ? kSymbols[(second & 15) << 2] : '=';
    *dst++ = '=';
  }
  *dst = '\0';
}

double copying(const std::vector<char>& from, std::vector<char>& to) {
  return shortest([&] {
    std::memcpy(to.data(), from.data(), from.size());
    sink = to[from.size() / 2];
  });
}

void benchBase64() {
  std::vector<char> input(kSize);
  uint32_t state = 1;
  for (char& byte : input) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  const auto* const bytes = reinterpret_cast<const uint8_t*>(input.data());
  std::vector<char> output((kSize + 2) / 3 * 4 + 1);
  std::vector<char> plain(output.size());
  const double copy = copying(input, output);
  const double symbols = shortest([&] { encodeBySymbols(bytes, kSize, plain.data()); });
  const double ours = shortest([&] {
    expect(ov_str_buf_to_base64(bytes, kSize, output.data(), output.size()) == 0, "base64");
  });
  expect(output == plain, "base64");
  constexpr ov::Base64Alphabet kAlphabet('+', '/');
  const double table =
      shortest([&] { ov::base64_encode_by_table(kAlphabet, bytes, kSize, output.data()); });
  std::printf("base64 %s shuffle\n", ov::base64_can_shuffle() ? "can" : "cannot");
  print("base64 of 50 MiB", ours, "memcpy", copy);
  print("base64 of 50 MiB", ours, "table of symbols", symbols);
  print("base64 by pairs alone", table, "table of symbols", symbols);
}

void benchUtf8(const char* name, const std::string& piece) {
  std::vector<char> text;
  while (text.size() + piece.size() < kSize) text.insert(text.end(), piece.begin(), piece.end());
  text.push_back('\0');
  std::vector<char> copied(text.size());
  const double copy = copying(text, copied);
  const double ours =
      shortest([&] { expect(ov_utf8_is_valid(text.data(), text.size()) == 1, name); });
  print(name, ours, "memcpy", copy);
}

void benchWildcard() {
  const std::string half(kStarsText, 'a');
  const std::string whole = half + half;
  const auto match = [](const std::string& text) {
    return shortest(
        [&text] { expect(ov_str_wildcard_strcmp("*a*a*a*a*b", text.c_str()) == 1, "wildcard"); });
  };
  print("*a*a*a*a*b over 200,000 bytes", match(whole), "over 100,000", match(half));
}

void benchCanonicalPath() {
  std::string path = "C:";
  while (path.size() + 20 < kPathSize) path += "\\folder/./name/../x";
  path.resize(kPathSize, 'y');
  char out[OV_PATH_SIZE];
  const double ours = shortest([&] {
    for (int i = 0; i < kRepeats; ++i) {
      expect(ov_path_canonical_path(path.c_str(), out, sizeof out) == 0, "canonical path");
    }
  });
  const double copy = shortest([&] {
    for (int i = 0; i < kRepeats; ++i) {
      expect(ov_str_ncpy(out, path.c_str(), sizeof out) == 0, "copy");
    }
  });
  print("10,000 canonical paths", ours, "ov_str_ncpy", copy);
}

}  // namespace
}  // namespace Vantrel::Web

int main() {
  using namespace Vantrel::Web;
  benchBase64();
  benchUtf8("UTF-8 test, ASCII", "The quick brown fox jumps over the lazy dog. ");
  benchUtf8("UTF-8 test, mixed",
            "Gr\xC3\xB6\xC3\x9F"
            "e \xE2\x82\xAC 5, \xE6\x96\x87\xE5\xAD\x97 \xF0\x9F\x98\x80 and so on. ");
  benchUtf8("UTF-8 test, no ASCII", "\xE6\x96\x87\xE5\xAD\x97\xD0\x96");
  benchWildcard();
  benchCanonicalPath();
  return 0;
}
