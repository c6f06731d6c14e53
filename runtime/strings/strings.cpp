// Small text functions, and the counting of null arguments.
#include <cstdlib>
#include <cstring>

#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/errors/asserts.h"
#include "runtime/strings/utf8_ascii.h"

int32_t g_ov_asserts_active = 1;
int32_t g_ov_asserts_skipped = 0;

size_t ov_str_nlen(const char* text, size_t max) {
  if (text == nullptr) return 0;
  return ov::text_length(reinterpret_cast<const uint8_t*>(text), max);
}

char* ov_str_ndup(const char* text, size_t max) {
  if (!ov::assert_not_null(text)) {
    ov_log("ov_str_ndup() called with null string");
    return nullptr;
  }
  const size_t length = ov_str_nlen(text, max);
  char* copy = static_cast<char*>(std::malloc(length + 1));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, text, length);
  copy[length] = 0;
  return copy;
}

size_t ov_str_nspn(const char* text, size_t max, const char* accept) {
  if (text == nullptr || accept == nullptr) return 0;
  size_t count = 0;
  do {
    if (text[count] == 0 || std::strchr(accept, text[count]) == nullptr) break;
    ++count;
  } while (count < max);
  return count;
}

size_t ov_str_cntchr(const char* text, int32_t c) {
  size_t count = 0;
  for (; text != nullptr && *text; ++text) {
    if (*text == static_cast<char>(c)) ++count;
  }
  return count;
}

void ov_str_repchr(char* text, int32_t from, int32_t to) {
  for (; text != nullptr && *text; ++text) {
    if (*text == static_cast<char>(from)) *text = static_cast<char>(to);
  }
}

int32_t ov_str_tail_cmp(const char* text, const char* tail) {
  if (text == nullptr || tail == nullptr) return 1;
  const size_t text_length = std::strlen(text);
  const size_t tail_length = std::strlen(tail);
  if (tail_length > text_length) return 1;
  return std::strcmp(text + (text_length - tail_length), tail) == 0 ? 0 : 1;
}
