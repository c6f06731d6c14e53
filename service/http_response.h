// A parsed reply of the desktop client. Owned by whoever called HttpRequest::invoke.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Vantrel::Web {

class HttpResponse {
 public:
  // A copy of the body; the only member that decides anything.
  std::string body() const { return body_; }

  uint16_t status = 0;
  std::multimap<std::string, std::string> headers;
  std::string body_;
};

// Splits a whole reply; null if it is cut off inside its head, if its status line has no reason, or
// if a header line has no ": ". Linear in the length of `text`.
std::unique_ptr<HttpResponse> parseHttpResponse(std::string_view text);

}  // namespace Vantrel::Web
