// For tests: the rules of the base16 and base64 texts once more, slow and obvious.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "runtime/ov_errors.h"

namespace ov::reference {

inline const std::string kStandardAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline const std::string kUrlAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

inline std::string slow_bits(const std::string& bytes) {
  std::string bits;
  for (const char byte : bytes) {
    for (int i = 7; i >= 0; --i) bits += (static_cast<uint8_t>(byte) >> i & 1) != 0 ? '1' : '0';
  }
  return bits;
}

inline std::string slow_encode(const std::string& bytes, const std::string& alphabet, bool pad) {
  std::string bits = slow_bits(bytes);
  while (bits.size() % 6 != 0) bits += '0';
  std::string text;
  for (size_t i = 0; i < bits.size(); i += 6) {
    text += alphabet[std::stoul(bits.substr(i, 6), nullptr, 2)];
  }
  while (pad && text.size() % 4 != 0) text += '=';
  return text;
}

// What a decoder gives: its code, and on success the bytes.
struct Decoded {
  ov_rc code;
  std::string bytes;
  bool operator==(const Decoded&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Decoded& decoded) {
  return out << "{" << decoded.code << ", '" << decoded.bytes << "'}";
}

inline const Decoded kRefused = {OV_EINVAL, ""};

// Groups of four: "=" at the start of one ends the text, as its second symbol is an error, as its
// third or fourth leaves one or two bytes.
inline Decoded slow_groups(const std::string& text, const std::string& alphabet) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); i += 4) {
    if (text[i] == '=') break;
    size_t take = 4;
    for (size_t n = 3; n >= 1; --n) {
      if (text[i + n] == '=') take = n;
    }
    if (take == 1) return kRefused;
    // Behind a third "=" the fourth symbol is not looked at.
    uint32_t bits = 0;
    for (size_t n = 0; n < 4; ++n) {
      const size_t value = n < take ? alphabet.find(text[i + n]) : 0;
      if (value == std::string::npos) return kRefused;
      bits = bits << 6 | static_cast<uint32_t>(value);
    }
    for (size_t n = 0; n + 1 < take; ++n) bytes += static_cast<char>(bits >> (16 - 8 * n) & 255);
  }
  return {0, bytes};
}

inline Decoded slow_strict(const std::string& text) {
  if (text.size() % 4 != 0) return kRefused;
  return slow_groups(text, kStandardAlphabet);
}

inline Decoded slow_blanks(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    if (std::string(" \t\r\n").find(c) != std::string::npos) continue;
    if (kStandardAlphabet.find(c) == std::string::npos && c != '=') return kRefused;
    kept += c;
  }
  return slow_strict(kept);
}

inline Decoded slow_mime(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    if (c == 0) break;
    if (kStandardAlphabet.find(c) != std::string::npos) kept += c;
  }
  while (kept.size() % 4 != 0) kept += '=';
  return slow_groups(kept, kStandardAlphabet);
}

inline Decoded slow_url(const std::string& text) {
  if (text.size() % 4 == 1 || text.find('=') != std::string::npos) return kRefused;
  std::string kept = text;
  while (kept.size() % 4 != 0) kept += '=';
  return slow_groups(kept, kUrlAlphabet);
}

inline std::string slow_base16(const std::string& bytes) {
  const std::string digits = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    text += digits[static_cast<uint8_t>(byte) / 16];
    text += digits[static_cast<uint8_t>(byte) % 16];
  }
  return text;
}

inline Decoded slow_base16_decode(const std::string& text) {
  if (text.size() % 2 != 0) return kRefused;
  const std::string digits = "0123456789ABCDEFabcdef";
  std::string bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    size_t value = 0;
    for (const char c : text.substr(i, 2)) {
      const size_t digit = digits.find(c);
      if (digit == std::string::npos) return kRefused;
      value = value * 16 + (digit < 16 ? digit : digit - 6);
    }
    bytes += static_cast<char>(value);
  }
  return {0, bytes};
}

}  // namespace ov::reference
