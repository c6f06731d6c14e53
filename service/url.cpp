#include "service/url.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {

// The delimiters that can end the present piece of the text behind the scheme.
constexpr std::string_view kAnyDelimiter = "@:/";
constexpr std::string_view kBehindUser = ":/";
constexpr std::string_view kBehindHost = "/";
constexpr std::string_view kInPath = "?";

// The decimal number at the start of `digits`; what does not fit a port loses its upper bits.
uint16_t readPort(const char* digits) {
  const long long number = std::strtoll(digits, nullptr, 10);
  return static_cast<uint16_t>(std::clamp<long long>(number, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

}  // namespace

void Url::clear() {
  *this = Url();
}

void Url::parse(const std::string& text) {
  const size_t schemeEnd = text.find("://");
  if (schemeEnd == std::string::npos) {
    ov_err("Invalid URL: %s", text.c_str());
    clear();
    return;
  }
  Url parsed;
  parsed.url = text;
  parsed.scheme = text.substr(0, schemeEnd);
  parsed.parseBehindScheme(text.substr(schemeEnd + 3));
  *this = std::move(parsed);
}

void Url::parseBehindScheme(const std::string& rest) {
  const size_t lastAt = rest.rfind('@');
  std::string_view delimiters = kAnyDelimiter;
  size_t pos = 0;
  for (;;) {
    const size_t i = rest.find_first_of(delimiters, pos);
    if (i == std::string::npos) break;
    if (i == 0) return;
    const std::string piece = rest.substr(pos, i - pos);
    switch (rest[i]) {
      case '/':
        if (delimiters == kAnyDelimiter) host = rest.substr(0, i);
        if (delimiters == kBehindUser) host = piece;
        if (delimiters == kBehindHost) port_ = readPort(rest.c_str() + pos);
        delimiters = kInPath;
        break;
      case ':':
        if (lastAt != std::string::npos && lastAt > i) {
          user = piece;
        } else {
          host = piece;
          delimiters = kBehindHost;
        }
        break;
      case '@':
        (user.empty() ? user : password) = piece;
        delimiters = kBehindUser;
        break;
      default:  // '?'
        path = piece;
        query = rest.substr(i + 1);
        return;
    }
    pos = i + 1;
  }
  if (host.empty()) host = rest;
  if (delimiters == kBehindHost) port_ = readPort(rest.c_str() + pos);
  if (delimiters == kInPath) path = rest.substr(pos);
}

}  // namespace Vantrel::Web
