// For tests: the rules of UTF-8 and UTF-16 once more, slow and obvious.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ov::reference {

using Units = std::vector<uint16_t>;

inline std::string encode(uint32_t c) {
  std::string text;
  const auto put = [&text](uint32_t byte) { text += static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xc0 + c / 64), put(0x80 + c % 64);
  } else if (c < 0x10000) {
    put(0xe0 + c / 4096), put(0x80 + c / 64 % 64), put(0x80 + c % 64);
  } else {
    put(0xf0 + c / 262144), put(0x80 + c / 4096 % 64), put(0x80 + c / 64 % 64), put(0x80 + c % 64);
  }
  return text;
}

inline bool is_surrogate(uint32_t c) {
  return c >= 0xd800 && c < 0xe000;
}

// The rows of the Unicode standard's table of well-formed sequences.
struct Row {
  uint8_t range[4][2];
  size_t length;
};
inline const Row kRows[] = {
    {{{0x00, 0x7f}}, 1},
    {{{0xc2, 0xdf}, {0x80, 0xbf}}, 2},
    {{{0xe0, 0xe0}, {0xa0, 0xbf}, {0x80, 0xbf}}, 3},
    {{{0xe1, 0xec}, {0x80, 0xbf}, {0x80, 0xbf}}, 3},
    {{{0xed, 0xed}, {0x80, 0x9f}, {0x80, 0xbf}}, 3},
    {{{0xee, 0xef}, {0x80, 0xbf}, {0x80, 0xbf}}, 3},
    {{{0xf0, 0xf0}, {0x90, 0xbf}, {0x80, 0xbf}, {0x80, 0xbf}}, 4},
    {{{0xf1, 0xf3}, {0x80, 0xbf}, {0x80, 0xbf}, {0x80, 0xbf}}, 4},
    {{{0xf4, 0xf4}, {0x80, 0x8f}, {0x80, 0xbf}, {0x80, 0xbf}}, 4},
};

// Length of the well-formed sequence at `at`, or 0.
inline size_t slow_sequence(const std::string& text, size_t at) {
  for (const Row& row : kRows) {
    bool match = text.size() - at >= row.length;
    for (size_t i = 0; match && i < row.length; ++i) {
      const uint8_t byte = static_cast<uint8_t>(text[at + i]);
      match = byte >= row.range[i][0] && byte <= row.range[i][1];
    }
    if (match) return row.length;
  }
  return 0;
}

inline size_t slow_well_formed_length(const std::string& text) {
  size_t at = 0;
  while (at < text.size()) {
    const size_t length = slow_sequence(text, at);
    if (length == 0) break;
    at += length;
  }
  return at;
}

// The units of a well-formed text.
inline std::optional<Units> slow_to_utf16(const std::string& text) {
  Units units;
  for (size_t at = 0; at < text.size();) {
    const size_t length = slow_sequence(text, at);
    if (length == 0) return std::nullopt;
    constexpr uint32_t kFirstBits[] = {0, 0x7f, 0x1f, 0x0f, 0x07};
    uint32_t c = static_cast<uint8_t>(text[at]) & kFirstBits[length];
    for (size_t i = 1; i < length; ++i) c = c * 64 + (static_cast<uint8_t>(text[at + i]) & 0x3f);
    if (c >= 0x10000) {
      units.push_back(static_cast<uint16_t>(0xd800 + (c - 0x10000) / 1024));
      units.push_back(static_cast<uint16_t>(0xdc00 + (c - 0x10000) % 1024));
    } else {
      units.push_back(static_cast<uint16_t>(c));
    }
    at += length;
  }
  return units;
}

// The text of units, with three bytes for a lone surrogate.
struct FromUnits {
  std::string text;
  bool loneSurrogate = false;
};

inline FromUnits slow_to_utf8(const Units& units) {
  FromUnits result;
  for (size_t i = 0; i < units.size(); ++i) {
    const bool high = units[i] >= 0xd800 && units[i] < 0xdc00;
    const bool low = i + 1 < units.size() && units[i + 1] >= 0xdc00 && units[i + 1] < 0xe000;
    if (high && low) {
      result.text += encode(
          static_cast<uint32_t>(0x10000 + (units[i] - 0xd800) * 1024 + (units[i + 1] - 0xdc00)));
      ++i;
      continue;
    }
    if (is_surrogate(units[i])) result.loneSurrogate = true;
    result.text += encode(units[i]);
  }
  return result;
}

// Offset of the byte at fault in the ill-formed sequence at `at`: behind the most bytes that begin
// a row of the table.
inline size_t slow_fault(const std::string& text, size_t at) {
  size_t most = 0;
  for (const Row& row : kRows) {
    size_t good = 0;
    while (good < row.length && at + good < text.size() &&
           static_cast<uint8_t>(text[at + good]) >= row.range[good][0] &&
           static_cast<uint8_t>(text[at + good]) <= row.range[good][1]) {
      ++good;
    }
    if (good > most) most = good;
  }
  return at + most;
}

// The text with each ill-formed sequence, up to and with its byte at fault, replaced.
inline std::string slow_replace(const std::string& text, const std::string& with) {
  std::string result;
  for (size_t at = 0; at < text.size();) {
    if (const size_t length = slow_sequence(text, at)) {
      result += text.substr(at, length);
      at += length;
    } else {
      result += with;
      at = slow_fault(text, at) + 1;
    }
  }
  return result;
}

// The text without an unfinished last sequence; nothing if it ends in continuation bytes that no
// first byte opens.
inline std::optional<std::string> slow_trim(const std::string& text) {
  const auto byte = [&text](size_t at) { return static_cast<uint8_t>(text[at]); };
  if (text.empty() || byte(text.size() - 1) < 0x80) return text;
  size_t first = text.size() - 1;
  while (byte(first) >= 0x80 && byte(first) < 0xc0) {
    if (first == 0) return std::nullopt;
    --first;
  }
  if (byte(first) < 0x80) return std::nullopt;
  const size_t here = text.size() - first;
  size_t told = 2;
  for (const int limit : {0xe0, 0xf0, 0xf8, 0xfc}) told += byte(first) >= limit ? 1u : 0u;
  return here == 1 || here != told ? text.substr(0, first) : text;
}

// Mostly well-formed text with a byte changed here and there.
inline std::string random_text(std::mt19937& random) {
  std::string text;
  const size_t count = random() % 8 == 0 ? random() % 60 : random() % 12;
  for (size_t i = 0; i < count; ++i) {
    static constexpr uint32_t kLimits[] = {0x7f, 0x7f, 0x7ff, 0xffff, 0x10ffff};
    text += encode(1 + random() % kLimits[random() % std::size(kLimits)]);
  }
  for (size_t i = random() % 3; i > 0 && !text.empty(); --i) {
    text[random() % text.size()] = static_cast<char>(1 + random() % 255);
  }
  return text;
}

}  // namespace ov::reference
