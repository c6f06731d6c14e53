// Matching of "*" and "?" patterns, on bytes.
#include "runtime/ov_strings.h"

namespace {

constexpr char kEscape = '\\';

// Where the match goes on after a mismatch: the pattern behind the last "*", one text byte later.
struct Retry {
  const char* pattern = nullptr;
  const char* text = nullptr;
};

// The number of pattern bytes that match one byte of text, or 0.
int match_one(const char* pattern, char byte) {
  if (*pattern == '?') return 1;
  if (*pattern == kEscape) return pattern[1] != 0 && pattern[1] == byte ? 2 : 0;
  return *pattern == byte ? 1 : 0;
}

}  // namespace

int32_t ov_str_wildcards_present(const char* pattern) {
  if (pattern == nullptr) return 0;
  for (; *pattern; ++pattern) {
    if (*pattern == '*' || *pattern == '?') return 1;
    if (*pattern == kEscape && *++pattern == 0) return 0;
  }
  return 0;
}

// Only the last "*" is ever tried again: whatever an earlier one could reach by taking more text,
// the last one reaches too, since it was met at the first place possible. So the time is at most
// the product of the two lengths.
int32_t ov_str_wildcard_strcmp(const char* pattern, const char* text) {
  if (pattern == nullptr || text == nullptr) return 1;
  Retry retry;
  for (;;) {
    if (*pattern == '*' && pattern[1] == 0) return 0;
    if (*text == 0) return *pattern == 0 ? 0 : 1;
    if (*pattern == '*') {
      retry = {++pattern, text};
      continue;
    }
    if (const int taken = *pattern == 0 ? 0 : match_one(pattern, *text); taken > 0) {
      pattern += taken;
      ++text;
      continue;
    }
    // A "*" leaves at least one byte of text to the rest of the pattern.
    if (retry.pattern == nullptr || *++retry.text == 0) return 1;
    pattern = retry.pattern;
    text = retry.text;
  }
}
