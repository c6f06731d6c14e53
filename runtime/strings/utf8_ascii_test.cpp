#include "runtime/strings/utf8_ascii.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/runtime/guarded_text.h"

namespace {

TEST(Utf8AsciiTest, RunEndsAtItsFirstOtherByteAtEveryDistanceFromABlock) {
  for (size_t start = 0; start < 20; ++start) {
    for (size_t length = 0; length < 80; ++length) {
      for (const char stop : {'\0', '\x80', '\xff'}) {
        std::string text(start + length, 'a');
        text += stop;
        text += std::string(40, 'b');
        const auto* const at = reinterpret_cast<const uint8_t*>(text.data()) + start;
        ASSERT_EQ(length, ov::utf8_ascii_run(at, SIZE_MAX));
        ASSERT_EQ(length, ov::utf8_ascii_run(at, length + 1));
        ASSERT_EQ(length, ov::utf8_ascii_run(at, length));
        ASSERT_EQ(length / 2, ov::utf8_ascii_run(at, length / 2));
      }
    }
  }
  uint8_t bytes[] = {0, 'z'};
  for (int byte = 0; byte < 256; ++byte) {
    bytes[0] = static_cast<uint8_t>(byte);
    EXPECT_EQ(byte > 0 && byte < 0x80 ? 1u : 0u, ov::utf8_ascii_run(bytes, 1)) << byte;
  }
}

TEST(Utf8AsciiTest, LengthIsThatOfTheTextOrTheMostAtEveryDistanceFromABlock) {
  ov::GuardedText memory(200);
  for (size_t start = 0; start < 20; ++start) {
    for (size_t length = 0; length < 80; ++length) {
      // What stands in front is none of the text's.
      const std::string text = std::string(start, '\0') + std::string(length, 'a') + '\0';
      const std::string rest(start % 3, 'b');
      const auto* const at = reinterpret_cast<const uint8_t*>(memory.bytes(text + rest)) + start;
      ASSERT_EQ(length, ov::text_length(at));
      for (size_t most = 0; most < length + 3; ++most) {
        ASSERT_EQ(std::min(most, length), ov::text_length(at, most));
      }
    }
  }
}

TEST(Utf8AsciiTest, TextWithoutATerminatorIsReadNoFurtherThanTheMost) {
  ov::GuardedText memory(200);
  for (size_t length = 1; length < 80; ++length) {
    const auto* const at =
        reinterpret_cast<const uint8_t*>(memory.bytes(std::string(length, '\xff')));
    ASSERT_EQ(length, ov::text_length(at, length));
  }
}

}  // namespace
