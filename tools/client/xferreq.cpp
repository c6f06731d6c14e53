#include "tools/client/xferreq.h"

#include <charconv>
#include <cstdint>

namespace Vantrel::StandIn {
namespace {

constexpr std::string_view kRoot = "<xferreq";
constexpr std::string_view kRootEnd = "</xferreq>";

void appendUtf8(std::string& text, std::uint32_t number) {
  auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (number < 0x80U) {
    add(number);
  } else if (number < 0x800U) {
    add(0xC0U | (number >> 6U));
    add(0x80U | (number & 0x3FU));
  } else if (number < 0x10000U) {
    add(0xE0U | (number >> 12U));
    add(0x80U | ((number >> 6U) & 0x3FU));
    add(0x80U | (number & 0x3FU));
  } else {
    add(0xF0U | (number >> 18U));
    add(0x80U | ((number >> 12U) & 0x3FU));
    add(0x80U | ((number >> 6U) & 0x3FU));
    add(0x80U | (number & 0x3FU));
  }
}

bool appendNumbered(std::string& text, std::string_view digits) {
  int base = 10;
  if (digits.starts_with('x')) {
    base = 16;
    digits.remove_prefix(1);
  }
  std::uint32_t number = 0;
  const char* end = digits.data() + digits.size();
  auto result = std::from_chars(digits.data(), end, number, base);
  bool surrogate = number >= 0xD800U && number < 0xE000U;
  if (result.ec != std::errc() || result.ptr != end || number == 0 || number > 0x10FFFFU ||
      surrogate)
    return false;
  appendUtf8(text, number);
  return true;
}

bool appendEntity(std::string& text, std::string_view name) {
  if (name.starts_with('#')) return appendNumbered(text, name.substr(1));
  if (name == "amp") {
    text += '&';
  } else if (name == "lt") {
    text += '<';
  } else if (name == "gt") {
    text += '>';
  } else if (name == "quot") {
    text += '"';
  } else if (name == "apos") {
    text += '\'';
  } else {
    return false;
  }
  return true;
}

bool resolveEntities(std::string_view raw, std::string& text) {
  while (!raw.empty()) {
    size_t start = raw.find('&');
    text += raw.substr(0, start);
    if (start == std::string_view::npos) return true;
    size_t end = raw.find(';', start);
    if (end == std::string_view::npos) return false;
    if (!appendEntity(text, raw.substr(start + 1, end - start - 1))) return false;
    raw.remove_prefix(end + 1);
  }
  return true;
}

// Takes the element from the front of `rest` when it is of that name. False for a broken one.
bool takeElement(std::string_view& rest, std::string_view name, bool& taken, std::string& text) {
  std::string open = "<" + std::string(name) + ">";
  std::string close = "</" + std::string(name) + ">";
  taken = rest.starts_with(open);
  if (!taken) return true;
  size_t end = rest.find(close);
  if (end == std::string_view::npos) return false;
  text.clear();
  bool good = resolveEntities(rest.substr(open.size(), end - open.size()), text);
  rest.remove_prefix(end + close.size());
  return good;
}

}  // namespace

std::string readXferRequest(std::string_view document, XferRequest& request) {
  size_t root = document.find(kRoot);
  if (root == std::string_view::npos) return "no xferreq element";
  std::string_view rest = document.substr(root + kRoot.size());
  while (true) {
    size_t tag = rest.find('<');
    if (tag == std::string_view::npos) return "the xferreq element has no end";
    rest.remove_prefix(tag);
    if (rest.starts_with(kRootEnd)) return {};
    bool taken = false;
    std::string text;
    if (!takeElement(rest, "src", taken, text)) return "malformed src element";
    if (taken) {
      request.sources.push_back(text);
      continue;
    }
    if (!takeElement(rest, "dest", taken, text)) return "malformed dest element";
    if (taken)
      request.destination = text;
    else
      rest.remove_prefix(1);
  }
}

}  // namespace Vantrel::StandIn
