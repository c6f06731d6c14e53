// Case of ASCII letters, whatever locale the host program has set. Other bytes are left alone.
#pragma once

#include <cstddef>

namespace ov {

constexpr char ascii_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char ascii_upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool equal_but_for_case(const char* a, const char* b) {
  size_t i = 0;
  while (a[i] != '\0' && ascii_lower(a[i]) == ascii_lower(b[i])) ++i;
  return a[i] == '\0' && b[i] == '\0';
}

}  // namespace ov
