// Exchanges with a running stand-in as raw bytes, for its own tests.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/support/test_socket.h"

namespace Vantrel::StandIn {

using Web::TestSupport::TestSocket;

// A request as the plug-in words it.
inline std::string requestText(const std::string& method, const std::string& path,
                               const std::string& key, const std::string& body = "") {
  return method + " " + path + " HTTP/1.1\r\nAuthorization-key: " + key +
         "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\nContent-Type: application/json\r\nUser-Agent: Orvane Vantrel\r\n\r\n" + body;
}

inline std::string pingText() {
  return "GET /v5/vantrel/info/ping HTTP/1.1\r\nConnection: close\r\nContent-Length: 0\r\n"
         "User-Agent: Orvane Vantrel\r\n\r\n";
}

// What comes until the other side closes, piece by piece as it is received.
inline std::vector<std::string> receiveAll(const TestSocket& socket) {
  std::vector<std::string> pieces;
  std::array<char, 65536> buffer{};
  while (true) {
    long received = socket.receive(buffer.data(), buffer.size());
    if (received <= 0) return pieces;
    pieces.emplace_back(buffer.data(), static_cast<size_t>(received));
  }
}

// The whole reply; empty when there is no connection or nothing comes.
inline std::string replyTo(uint16_t port, const std::string& request) {
  TestSocket socket = TestSocket::connectLoopback(port);
  if (!socket.isOpen() || !socket.sendAll(request)) return {};
  std::string reply;
  for (const std::string& piece : receiveAll(socket)) reply += piece;
  return reply;
}

inline std::string bodyOf(const std::string& reply) {
  size_t end = reply.find("\r\n\r\n");
  return end == std::string::npos ? std::string() : reply.substr(end + 4);
}

}  // namespace Vantrel::StandIn
