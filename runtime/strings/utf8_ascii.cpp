#include "runtime/strings/utf8_ascii.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>

// A block with a byte of the text lies on that byte's page of memory, so it may be read whole
// though the text may begin or end in it. Sanitizers would report the other bytes.
#if defined(__clang__)
#define OV_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address", "thread")))
#else
#define OV_READS_WHOLE_BLOCKS
#endif

namespace {

constexpr size_t kBlockSize = sizeof(__m128i);

bool is_plain(uint8_t byte) {
  return byte != 0 && byte < 0x80;
}

// A bit for each byte of the block that is 0 or above 0x7f.
OV_READS_WHOLE_BLOCKS uint32_t other_bytes(const uint8_t* block) {
  const __m128i bytes = *reinterpret_cast<const __m128i*>(block);
  const __m128i zeros = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
  return static_cast<uint32_t>(_mm_movemask_epi8(_mm_or_si128(bytes, zeros)));
}

// A bit for each byte of the block that is 0.
OV_READS_WHOLE_BLOCKS uint32_t zero_bytes(const void* block) {
  const __m128i zeros = _mm_cmpeq_epi8(*static_cast<const __m128i*>(block), _mm_setzero_si128());
  return static_cast<uint32_t>(_mm_movemask_epi8(zeros));
}

// Two bits for each unit of the block that is 0.
OV_READS_WHOLE_BLOCKS uint32_t zero_units(const void* block) {
  const __m128i zeros = _mm_cmpeq_epi16(*static_cast<const __m128i*>(block), _mm_setzero_si128());
  return static_cast<uint32_t>(_mm_movemask_epi8(zeros));
}

}  // namespace

size_t ov::text_length(const uint8_t* text, size_t max) {
  // The first block begins before the text, the last one may end behind `max`.
  const size_t before = reinterpret_cast<uintptr_t>(text) % kBlockSize;
  const auto place = [](uint32_t zeros) { return static_cast<size_t>(std::countr_zero(zeros)); };
  if (max == 0) return 0;
  if (const uint32_t zeros = zero_bytes(text - before) >> before) {
    return std::min(place(zeros), max);
  }
  for (size_t length = kBlockSize - before; length < max; length += kBlockSize) {
    if (const uint32_t zeros = zero_bytes(text + length)) {
      return std::min(length + place(zeros), max);
    }
  }
  return max;
}

size_t ov::text_length(const Utf16Unit* text) {
  // A unit at an odd address is in two blocks; it is no unit of a compiler's.
  size_t length = 0;
  for (; reinterpret_cast<uintptr_t>(text + length) % kBlockSize != 0; ++length) {
    if (text[length] == 0) return length;
  }
  for (;; length += kBlockSize / sizeof *text) {
    if (const uint32_t zeros = zero_units(text + length)) {
      return length + static_cast<size_t>(std::countr_zero(zeros)) / sizeof *text;
    }
  }
}

size_t ov::utf8_ascii_run(const uint8_t* text, size_t max) {
  size_t run = 0;
  for (; run < max && reinterpret_cast<uintptr_t>(text + run) % kBlockSize != 0; ++run) {
    if (!is_plain(text[run])) return run;
  }
  for (; run < max; run += kBlockSize) {
    if (const uint32_t others = other_bytes(text + run)) {
      run += static_cast<size_t>(std::countr_zero(others));
      break;
    }
  }
  return std::min(run, max);
}
