// The decoders of base16 and base64 text, and their encoders on what comes out.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "runtime/ov_strings.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

using Decoder = ov_rc (*)(const char*, size_t, void*, size_t, size_t*);
using Encoder = ov_rc (*)(const void*, size_t, char*, size_t);

// What is decoded must come back from its own encoding.
void turn_round(Decoder decode, Decoder strict, Encoder encode, const std::vector<char>& text,
                size_t room) {
  std::vector<uint8_t> bytes(room);
  size_t length = 0;
  if (decode(text.data(), text.size(), bytes.data(), bytes.size(), &length) != 0) return;
  check(length <= bytes.size());
  bytes.resize(length);
  std::vector<char> encoded(length * 2 + 5);
  check(encode(bytes.data(), bytes.size(), encoded.data(), encoded.size()) == 0);
  std::vector<uint8_t> again(length + 4);
  size_t again_length = 0;
  check(strict(encoded.data(), SIZE_MAX, again.data(), again.size(), &again_length) == 0);
  again.resize(again_length);
  check(again == bytes);
}

}  // namespace

// The first byte chooses how much room a decoder gets.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  std::vector<char> text(data + 1, data + size);
  const size_t room = data[0] < 128 ? text.size() + 4 : data[0] - size_t{127};
  text.reserve(1);
  turn_round(&ov_str_base16_to_buf, &ov_str_base16_to_buf, &ov_str_buf_to_base16, text, room);
  turn_round(&ov_str_base64_to_buf, &ov_str_base64_to_buf, &ov_str_buf_to_base64, text, room);
  turn_round(&ov_str_mime_base64_to_buf, &ov_str_base64_to_buf, &ov_str_buf_to_base64, text, room);
  turn_round(&ov_str_base64url_to_buf, &ov_str_base64url_to_buf, &ov_str_buf_to_base64url, text,
             room);
  return 0;
}
