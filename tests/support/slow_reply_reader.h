// The rules by which a reply is read, written down once more without any economy: every piece is
// followed by a search from the front. What the real reader is compared with.
#pragma once

#include <cctype>
#include <cstdlib>
#include <string>

namespace Vantrel::Web::TestSupport {

class SlowReplyReader {
 public:
  // Takes a piece up to its first NUL; true when the reply is complete.
  bool feed(const std::string& piece) {
    text += piece.c_str();
    const size_t label = text.find("Content-Length:");
    if (label == std::string::npos || text.find("\r\n", label) == std::string::npos) return false;
    const long long length = number(text.c_str() + label + 15);
    if (length < 0) return false;
    if (length == 0) return true;
    const size_t headEnd = text.find("\r\n\r\n");
    if (headEnd == std::string::npos) return false;
    if (text.size() - headEnd - 4 < static_cast<size_t>(length)) return false;
    text.resize(headEnd + 4 + static_cast<size_t>(length));
    return true;
  }

  std::string text;

 private:
  // The number behind blanks of the same line; 0 if there is none. strtoll would skip line ends
  // too.
  static long long number(const char* at) {
    while (*at == ' ' || *at == '\t') ++at;
    const bool isNumber = std::isdigit(static_cast<unsigned char>(*at)) || *at == '-' || *at == '+';
    return isNumber ? std::strtoll(at, nullptr, 10) : 0;
  }
};

}  // namespace Vantrel::Web::TestSupport
