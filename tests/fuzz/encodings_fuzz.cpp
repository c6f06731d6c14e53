// The decoders of base16 and base64 texts and their encoders, against the same rules without
// economy.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/encodings_reference.h"

namespace {

using ov::reference::Decoded;
using ov::reference::slow_encode;

void check(bool holds) {
  if (!holds) std::abort();
}

using Decoder = ov_rc (*)(const char*, size_t, void*, size_t, size_t*);
using Encoder = ov_rc (*)(const void*, size_t, char*, size_t);

// With as much room as no text of this length needs, and with `small` bytes of it.
void decode(Decoder decoder, const Decoded& expected, const std::vector<char>& text, size_t small) {
  std::vector<char> out(text.size() + 4);
  size_t length = 0;
  const ov_rc code = decoder(text.data(), text.size(), out.data(), out.size(), &length);
  check(code == expected.code);
  if (code == 0) check(std::string(out.data(), length) == expected.bytes);
  out.assign(small, '#');
  out.reserve(1);
  const ov_rc cut = decoder(text.data(), text.size(), out.data(), small, &length);
  if (cut == 0) check(std::string(out.data(), length) == expected.bytes);
  check(cut == code || cut == OV_EBUFFER);
}

void encode(Encoder encoder, const std::string& expected, const std::vector<char>& bytes,
            size_t small) {
  std::vector<char> out(bytes.size() * 2 + 5);
  check(encoder(bytes.data(), bytes.size(), out.data(), out.size()) == 0);
  check(expected == out.data());
  out.assign(small + 1, '#');
  if (encoder(bytes.data(), bytes.size(), out.data(), out.size()) == 0) {
    check(expected == out.data());
  } else {
    check(out[0] == '#' && expected.size() + 1 + 3 > out.size());
  }
}

ov_rc strict(const char* src, size_t length, void* dst, size_t size, size_t* out) {
  return ov_str_base64_to_buf_impl(src, length, dst, size, out, 0);
}

ov_rc lenient(const char* src, size_t length, void* dst, size_t size, size_t* out) {
  return ov_str_base64_to_buf_impl(src, length, dst, size, out, 1);
}

}  // namespace

// The first byte is the size of a small buffer.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace ov::reference;
  if (size == 0) return 0;
  const size_t small = data[0];
  std::vector<char> exact(data + 1, data + size);
  exact.reserve(1);
  const std::string text(exact.begin(), exact.end());
  decode(&ov_str_base16_to_buf, slow_base16_decode(text), exact, small);
  decode(&ov_str_base64_to_buf, slow_blanks(text), exact, small);
  decode(&ov_str_mime_base64_to_buf, slow_mime(text), exact, small);
  decode(&strict, slow_strict(text), exact, small);
  decode(&lenient, slow_mime(text), exact, small);
  decode(&ov_str_base64url_to_buf, slow_url(text), exact, small);
  encode(&ov_str_buf_to_base16, slow_base16(text), exact, small);
  encode(&ov_str_buf_to_base64, slow_encode(text, kStandardAlphabet, true), exact, small);
  encode(&ov_str_buf_to_base64url, slow_encode(text, kUrlAlphabet, false), exact, small);
  return 0;
}
