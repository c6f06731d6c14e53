#include "tools/client/json_text.h"

#include <array>
#include <cstdio>

namespace Vantrel::StandIn {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool isContinuation(std::string_view text, size_t at) {
  return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
}

// How many bytes a well-formed sequence that begins with `lead` has; 0 when none begins so.
size_t sequenceLength(unsigned lead) {
  if (lead >= 0xC2U && lead <= 0xDFU) return 2;
  if (lead >= 0xE0U && lead <= 0xEFU) return 3;
  if (lead >= 0xF0U && lead <= 0xF4U) return 4;
  return 0;
}

// Overlong forms, surrogates and numbers above U+10FFFF show in the second byte.
bool secondByteSuits(unsigned lead, unsigned second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0U;
    case 0xED:
      return second < 0xA0U;
    case 0xF0:
      return second >= 0x90U;
    case 0xF4:
      return second < 0x90U;
    default:
      return true;
  }
}

// The length of the well-formed multi-byte sequence at `at`, or 0.
size_t sequenceAt(std::string_view text, size_t at) {
  auto lead = static_cast<unsigned char>(text[at]);
  size_t length = sequenceLength(lead);
  for (size_t i = 1; i < length; ++i)
    if (!isContinuation(text, at + i)) return 0;
  if (length > 0 && !secondByteSuits(lead, static_cast<unsigned char>(text[at + 1]))) return 0;
  return length;
}

void appendAscii(std::string& out, char c) {
  if (c == '"' || c == '\\') {
    out += '\\';
    out += c;
  } else if (static_cast<unsigned char>(c) < 0x20U || c == 0x7F) {
    std::array<char, 8> buffer{};
    static_cast<void>(
        std::snprintf(buffer.data(), buffer.size(), "\\u%04x", static_cast<unsigned>(c)));
    out += buffer.data();
  } else {
    out += c;
  }
}

}  // namespace

std::string jsonQuoted(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '"';
  for (size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80U) {
      appendAscii(out, text[i++]);
      continue;
    }
    size_t length = sequenceAt(text, i);
    out += length > 0 ? text.substr(i, length) : kReplacement;
    i += length > 0 ? length : 1;
  }
  out += '"';
  return out;
}

void JsonObject::addRaw(std::string_view name, std::string_view json) {
  if (!members_.empty()) members_ += ',';
  members_ += jsonQuoted(name);
  members_ += ':';
  members_ += json;
}

}  // namespace Vantrel::StandIn
