// For tests: the rules by which a number is read once more, slow and obvious.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>

#include "runtime/ov_errors.h"

namespace ov::reference {

// What stands in a value that is not written.
constexpr int64_t kUntouched = -77;

// What ov_str_ahtoll_err gives: code, value and the offset of its end.
struct Reading {
  ov_rc code;
  int64_t value;
  size_t end;
  bool operator==(const Reading&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Reading& reading) {
  return out << "{" << reading.code << ", " << reading.value << ", " << reading.end << "}";
}

// The number of a text in 128 bits, read by the rules step by step.
inline Reading slow_read(const std::string& text) {
  size_t at = 0;
  while (at < text.size() && std::strchr(" \t\n\v\f\r", text[at]) != nullptr) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (negative) ++at;
  std::string digits = "0123456789";
  const std::string rest = text.substr(at);
  if (rest.starts_with("0x") || rest.starts_with("0X")) {
    digits = "0123456789abcdef";
    at += 2;
  } else if (rest.size() > 1 && rest[0] == '0' && rest[1] >= '0' && rest[1] <= '9') {
    digits = "01234567";
    at += 1;
  } else if (rest.starts_with("%")) {
    digits = "01";
    at += 1;
  }
  const auto digit = [&](size_t i) -> std::optional<int> {
    if (i >= text.size()) return std::nullopt;
    const char c = text[i] >= 'A' && text[i] <= 'F' ? static_cast<char>(text[i] + 32) : text[i];
    const size_t found = digits.find(c);
    if (found == std::string::npos) return std::nullopt;
    return static_cast<int>(found);
  };
  if (!digit(at)) return {OV_EINVAL, kUntouched, at};
  __int128 value = 0;
  for (; digit(at); ++at) {
    const __int128 next = value * static_cast<__int128>(digits.size()) + *digit(at);
    if ((negative ? -next : next) < INT64_MIN || (negative ? -next : next) > INT64_MAX) {
      return {OV_ERANGE, kUntouched, at};
    }
    value = next;
  }
  return {0, static_cast<int64_t>(negative ? -value : value), at};
}

}  // namespace ov::reference
