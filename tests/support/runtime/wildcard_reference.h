// For tests: the rules of the wildcard match once more, slow and obvious.
#pragma once

#include <string>

namespace ov::reference {

// The rules of the match, one after the other and with no regard to time.
inline bool slow_match(const char* pattern, const char* text) {
  if (*pattern == 0 || *text == 0) {
    return std::string(pattern) == "*" || (*pattern == 0 && *text == 0);
  }
  if (*pattern == '*') {
    if (pattern[1] == 0) return true;
    for (; *text; ++text) {
      if (slow_match(pattern + 1, text)) return true;
    }
    return false;
  }
  if (*pattern == '?') return slow_match(pattern + 1, text + 1);
  if (*pattern == '\\') {
    return pattern[1] != 0 && pattern[1] == *text && slow_match(pattern + 2, text + 1);
  }
  return *pattern == *text && slow_match(pattern + 1, text + 1);
}

}  // namespace ov::reference
