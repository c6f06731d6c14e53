// A parsed reply of the desktop client. Owned by whoever called HttpRequest::invoke.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace Vantrel::Web {

class HttpResponse {
 public:
  HttpResponse() = default;
  explicit HttpResponse(std::string text) : body_(std::move(text)) {}

  // The only part that decides anything.
  const std::string& body() const { return body_; }
  // Gives the body away, without a copy.
  std::string takeBody() { return std::move(body_); }

  uint16_t status = 0;
  std::multimap<std::string, std::string> headers;

 private:
  std::string body_;
};

// Splits a whole reply; null if it is cut off inside its head, if its status line has no reason, or
// if a header line has no ": ". Linear in the length of `text`.
std::unique_ptr<HttpResponse> parseHttpResponse(std::string text);

}  // namespace Vantrel::Web
