// The other side of the benches that exchange: an HTTP server of one thread that answers one
// connection after the other as fast as it can and keeps nothing of what it reads. It prints its
// port and ends with its standard input.
// usage: bench_server

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "bench/child_win.h"
#include "tests/support/test_socket.h"

namespace Vantrel::Web::Bench {
namespace {

using TestSupport::TestSocket;

constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kLength = "Content-Length: ";
constexpr size_t kReceiveSize = size_t{64} << 10;
constexpr char kSmallReply[] =
    "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n"
    "Connection: close\r\n\r\n{}";

// Waits in a thread of its own for the end of whoever started this.
DWORD WINAPI endWithInput(void*) {
  char byte = 0;
  DWORD count = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &count, nullptr) != FALSE &&
         count != 0) {
  }
  ExitProcess(0);
}

// The number behind `label`, 0 without one.
size_t numberBehind(std::string_view text, std::string_view label) {
  const size_t at = text.find(label);
  if (at == std::string_view::npos) return 0;
  return std::strtoull(text.data() + at + label.size(), nullptr, 10);
}

// Reads a whole request and returns its head; empty when the peer went away.
std::string readRequest(const TestSocket& connection) {
  static char buffer[kReceiveSize];
  std::string head;
  size_t end = std::string::npos;
  while (end == std::string::npos) {
    const long count = connection.receive(buffer, sizeof buffer);
    if (count <= 0) return {};
    head.append(buffer, static_cast<size_t>(count));
    end = head.find(kHeadEnd);
  }
  const size_t whole = end + kHeadEnd.size() + numberBehind(head, kLength);
  for (size_t received = head.size(); received < whole;) {
    const long count = connection.receive(buffer, sizeof buffer);
    if (count <= 0) return {};
    received += static_cast<size_t>(count);
  }
  return head;
}

// A large reply, made once.
const std::string& largeReply(size_t size, bool withLength) {
  static std::map<std::pair<size_t, bool>, std::string> replies;
  std::string& reply = replies[{size, withLength}];
  if (!reply.empty()) return reply;
  reply = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";
  if (withLength) reply.append(kLength).append(std::to_string(size)).append("\r\n");
  reply.append("Connection: close\r\n\r\n").append(size, 'x');
  return reply;
}

std::string_view replyTo(const std::string& head) {
  static const std::string small = kSmallReply;
  if (const size_t size = numberBehind(head, kSizedPath)) return largeReply(size, true);
  if (const size_t size = numberBehind(head, kUnsizedPath)) return largeReply(size, false);
  return small;
}

void serve(const TestSocket& connection) {
  const std::string head = readRequest(connection);
  if (head.empty()) return;
  connection.sendAll(replyTo(head));
  connection.finishSending();
  // Until the peer has closed, or what it has not read would be lost.
  char byte = 0;
  while (connection.receive(&byte, 1) > 0) {
  }
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  const TestSocket listener = TestSocket::listenLoopback(0);
  std::printf("%u\n", unsigned{listener.localPort()});
  static_cast<void>(std::fflush(stdout));
  CloseHandle(CreateThread(nullptr, 0, endWithInput, nullptr, 0, nullptr));
  for (;;) {
    const TestSocket connection = listener.accept();
    if (connection.isOpen()) serve(connection);
  }
}
