#include "service/http_request.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {

constexpr char kUserAgent[] = "Orvane Vantrel";
// What one receive takes at most, and the pieces in which the reader gets it: a NUL ends a piece.
constexpr size_t kReceiveSize = 32768;
constexpr size_t kPieceSize = 1024;
// A body up to this size leaves with its head, in one packet as a rule; a longer one is not copied.
constexpr size_t kOnePieceBody = 16384;

// Sends the whole text; false on the first failure.
bool sendAll(TcpSocket& socket, std::string_view text) {
  while (!text.empty()) {
    const size_t part = std::min<size_t>(text.size(), std::numeric_limits<int32_t>::max());
    const int32_t sent = socket.send(text.data(), static_cast<int32_t>(part));
    if (sent <= 0) return false;
    text.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

bool sendRequest(TcpSocket& socket, std::string head, const std::string& body) {
  if (body.size() > kOnePieceBody) return sendAll(socket, head) && sendAll(socket, body);
  return sendAll(socket, head.append(body));
}

// Whether the reply is complete with these bytes.
bool feedPieces(HttpReplyReader& reader, std::string_view bytes) {
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPieceSize, bytes.size()))) {
    if (reader.feed(bytes.substr(0, kPieceSize))) return true;
  }
  return false;
}

// Receives until the reply is complete, the peer closes or the connection fails.
void receiveReply(TcpSocket& socket, HttpReplyReader& reader) {
  char buffer[kReceiveSize];
  for (;;) {
    const int32_t received = socket.recv(buffer, sizeof buffer);
    if (received < 0) {
      ov_err("HttpRequest::invoke() - socket.recv() returned %i", received);
      return;
    }
    if (received == 0) {
      OV_DEBUG("HttpRequest::invoke() - The peer has performed an orderly shutdown");
      return;
    }
    if (feedPieces(reader, {buffer, static_cast<size_t>(received)})) return;
  }
}

}  // namespace

HttpRequest::HttpRequest(std::string hostName, uint16_t portNumber)
    : host(std::move(hostName)), port(portNumber) {}

HttpRequest::~HttpRequest() = default;

void HttpRequest::addHeader(const std::string& name, const std::string& value) {
  headers.emplace(name, value);
}

void HttpRequest::setBody(std::string text) {
  body = std::move(text);
}

std::unique_ptr<HttpResponse> HttpRequest::invoke(const ConnectionPurpose& purpose) {
  // A reply or a body that memory cannot hold is a failed exchange, not the end of the browser.
  try {
    TcpSocket socket;
    if (socket.connect(host, port, purpose) != 0) return nullptr;
    addHeader("User-Agent", kUserAgent);
    addHeader("Connection", "close");
    addHeader("Content-Length", std::to_string(body.size()));
    if (!sendRequest(socket, headText(), body)) return nullptr;
    HttpReplyReader reader;
    receiveReply(socket, reader);
    return parseHttpResponse(reader.takeText());
  } catch (const std::exception& error) {
    ov_err("HttpRequest::invoke() - %s", error.what());
    return nullptr;
  }
}

// Header texts go out as they are: the client's own file is trusted with the head of the request.
std::string HttpRequest::headText() const {
  constexpr std::string_view kVersion = " HTTP/1.1\r\n";
  size_t size = method.size() + path.size() + kVersion.size() + 3;
  for (const auto& [name, value] : headers) size += name.size() + value.size() + 4;
  std::string text;
  text.reserve(size + (body.size() <= kOnePieceBody ? body.size() : 0));
  text.append(method).append(" ").append(path).append(kVersion);
  for (const auto& [name, value] : headers) {
    text.append(name).append(": ").append(value).append("\r\n");
  }
  text.append("\r\n");
  return text;
}

bool fitsRequestLine(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7F';
  });
}

}  // namespace Vantrel::Web
