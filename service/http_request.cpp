#include "service/http_request.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>

#include "runtime/ov_log.h"
#include "service/http_reply_reader.h"
#include "service/tcp_socket.h"

namespace Vantrel::Web {

namespace {

constexpr char kUserAgent[] = "Orvane Vantrel";
constexpr size_t kReceiveSize = 1024;

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
    if (reader.feed({buffer, static_cast<size_t>(received)})) return;
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

std::unique_ptr<HttpResponse> HttpRequest::invoke() {
  // A reply or a body that memory cannot hold is a failed exchange, not the end of the browser.
  try {
    TcpSocket socket;
    if (socket.connect(host, port) != 0) return nullptr;
    addHeader("User-Agent", kUserAgent);
    addHeader("Connection", "close");
    addHeader("Content-Length", std::to_string(body.size()));
    if (!sendAll(socket, requestText())) return nullptr;
    HttpReplyReader reader;
    receiveReply(socket, reader);
    return parseHttpResponse(reader.takeText());
  } catch (const std::exception& error) {
    ov_err("HttpRequest::invoke() - %s", error.what());
    return nullptr;
  }
}

// Method, path and header texts go out as they are: the page and the client's own file are trusted
// with the head of the request.
std::string HttpRequest::requestText() const {
  constexpr std::string_view kVersion = " HTTP/1.1\r\n";
  size_t size = method.size() + path.size() + body.size() + kVersion.size() + 3;
  for (const auto& [name, value] : headers) size += name.size() + value.size() + 4;
  std::string text;
  text.reserve(size);
  text.append(method).append(" ").append(path).append(kVersion);
  for (const auto& [name, value] : headers) {
    text.append(name).append(": ").append(value).append("\r\n");
  }
  text.append("\r\n").append(body);
  return text;
}

}  // namespace Vantrel::Web
