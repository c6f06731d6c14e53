// The HTTP messages of the local service: a request read from its bytes, and a reply.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vantrel::StandIn {

struct ServiceRequest {
  std::string method;
  std::string path;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;

  // The value of the first header of that name, whatever its case; null when there is none.
  const std::string* header(std::string_view name) const;
};

// Reads one request from the pieces in which it arrives. Lines end in CRLF only: a lone line feed
// belongs to the value it stands in, because the key may end in one. Used by one thread.
class RequestReader {
 public:
  enum class State { kReading, kComplete, kMalformed };

  static constexpr size_t kMostHeadBytes = 65536;
  static constexpr size_t kMostBodyBytes = size_t{64} << 20;

  // Takes the next piece; bytes behind the promised body are dropped.
  State add(std::string_view bytes);

  // Complete requests only.
  const ServiceRequest& request() const { return request_; }

  // Why a request is malformed.
  const std::string& problem() const { return problem_; }

 private:
  State fail(std::string problem);
  State readHead(size_t end);
  bool readHeaderLine(std::string_view line);
  State takeBody();

  std::string text_;
  size_t searched_ = 0;
  size_t bodyStart_ = 0;
  size_t bodyBytes_ = 0;
  State state_ = State::kReading;
  ServiceRequest request_;
  std::string problem_;
};

struct ServiceReply {
  int status = 200;
  std::string body;
};

// The words that follow a status number in a status line.
std::string_view reasonPhrase(int status);

// The one form of an error body; `code` is the HTTP status.
ServiceReply errorReply(int status, std::string_view internalMessage, std::string_view userMessage);

}  // namespace Vantrel::StandIn
