#include "tools/client/socket_win.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <string>

namespace Vantrel::StandIn {
namespace {

constexpr std::chrono::seconds kFinishWait{2};
constexpr int kFinishStepMs = 100;
constexpr size_t kMostPerSend = 1 << 20;

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string(what) + " failed: " + std::to_string(WSAGetLastError()));
}

sockaddr* generic(sockaddr_in* address) {
  return reinterpret_cast<sockaddr*>(address);
}

}  // namespace

WinsockSession::WinsockSession() {
  WSADATA data{};
  if (WSAStartup(MAKEWORD(2, 2), &data) != 0) fail("WSAStartup");
}

WinsockSession::~WinsockSession() {
  WSACleanup();
}

Socket::~Socket() {
  if (open()) closesocket(handle_);
}

Socket& Socket::operator=(Socket&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

bool Socket::sendAll(std::string_view bytes) const {
  while (!bytes.empty()) {
    int part = static_cast<int>(std::min(bytes.size(), kMostPerSend));
    int sent = send(handle_, bytes.data(), part, 0);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

bool Socket::readableWithin(int milliseconds) const {
  fd_set set;
  set.fd_count = 1;
  set.fd_array[0] = handle_;
  timeval wait{milliseconds / 1000, (milliseconds % 1000) * 1000};
  return select(0, &set, nullptr, nullptr, &wait) > 0;
}

void Socket::finish() const {
  shutdown(handle_, SD_SEND);
  auto deadline = std::chrono::steady_clock::now() + kFinishWait;
  std::array<char, 4096> dropped{};
  while (std::chrono::steady_clock::now() < deadline) {
    if (!readableWithin(kFinishStepMs)) continue;
    if (receive(dropped.data(), static_cast<int>(dropped.size())) <= 0) return;
  }
}

Socket listenOn(std::uint16_t port) {
  Socket listener(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
  if (!listener.open()) fail("socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (bind(listener.handle(), generic(&address), sizeof address) != 0) fail("bind");
  if (listen(listener.handle(), SOMAXCONN) != 0) fail("listen");
  return listener;
}

std::uint16_t portOf(const Socket& listener) {
  sockaddr_in address{};
  int size = sizeof address;
  if (getsockname(listener.handle(), generic(&address), &size) != 0) fail("getsockname");
  return ntohs(address.sin_port);
}

Socket acceptWithin(const Socket& listener, int milliseconds) {
  if (!listener.readableWithin(milliseconds)) return {};
  Socket connection(accept(listener.handle(), nullptr, nullptr));
  // The pieces of a split reply must not be joined again on their way.
  BOOL atOnce = TRUE;
  if (connection.open())
    setsockopt(connection.handle(), IPPROTO_TCP, TCP_NODELAY,
               reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
  return connection;
}

}  // namespace Vantrel::StandIn
