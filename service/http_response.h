// A reply of the desktop client: its collection from the pieces in which it arrives, its parsing,
// and what is left of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace Vantrel::Web {

// Collects the text of one reply and tells when it is complete: the reply's own "Content-Length:"
// decides, and without one only the peer's close ends it. Makes no system call. Belongs to one
// exchange on one thread.
//
// The cost is linear in the length of the reply: each search resumes where the last one stopped.
class HttpReplyReader {
 public:
  // Takes the next piece up to its first NUL byte. Returns true when the reply is complete; nothing
  // is to be fed after that.
  bool feed(std::string_view piece);

  // What has arrived, cut to the promised length when the reply is complete.
  const std::string& text() const { return response_; }
  // Gives the text away, without a copy.
  std::string takeText() { return std::move(response_); }

 private:
  enum class Length { kUnknown, kKnown, kAbsent };

  bool findLengthLine();
  void readLength();
  bool findHeaderEnd();

  std::string response_;
  Length lengthState_ = Length::kUnknown;
  uint64_t contentLength_ = 0;
  size_t labelEnd_ = std::string::npos;   // behind "Content-Length:"
  size_t bodyStart_ = std::string::npos;  // behind the empty line
  size_t labelSearch_ = 0;                // where the next search for each of them begins
  size_t lineEndSearch_ = 0;
  size_t headerEndSearch_ = 0;
};

// A parsed reply. Owned by whoever called HttpRequest::invoke.
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
