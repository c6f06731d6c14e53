#include "tests/support/test_socket.h"

#include <winsock2.h>
#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace Vantrel::Web::TestSupport {

namespace {

sockaddr_in loopback(uint16_t port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

// The socket layer, brought up once and for the life of the test program.
SOCKET newSocket() {
  static const int startupResult = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  if (startupResult != 0) throw std::runtime_error("test server: no socket layer");
  return socket(AF_INET, SOCK_STREAM, 0);
}

}  // namespace

TestSocket& TestSocket::operator=(TestSocket&& other) noexcept {
  if (this != &other) {
    close();
    handle = other.handle;
    other.handle = kClosed;
  }
  return *this;
}

TestSocket TestSocket::listenLoopback(uint16_t port, int queue) {
  TestSocket listener(newSocket());
  const sockaddr_in address = loopback(port);
  if (bind(listener.handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener.handle, queue) != 0) {
    throw std::runtime_error("test server: no port to listen on");
  }
  return listener;
}

TestSocket TestSocket::connectLoopback(uint16_t port) {
  TestSocket socket(newSocket());
  const sockaddr_in address = loopback(port);
  if (connect(socket.handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    socket.close();
  }
  return socket;
}

uint16_t TestSocket::localPort() const {
  sockaddr_in address = {};
  int size = sizeof address;
  getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool TestSocket::waitReadable(int milliseconds) const {
  fd_set readable = {};
  readable.fd_count = 1;
  readable.fd_array[0] = handle;
  timeval limit = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, &readable, nullptr, nullptr, &limit) > 0;
}

TestSocket TestSocket::accept() const {
  const SOCKET accepted = ::accept(handle, nullptr, nullptr);
  if (accepted == INVALID_SOCKET) return TestSocket();
  const BOOL on = TRUE;
  setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  return TestSocket(accepted);
}

long TestSocket::receive(char* buffer, size_t size) const {
  return recv(handle, buffer, static_cast<int>(size), 0);
}

bool TestSocket::sendAll(std::string_view text) const {
  while (!text.empty()) {
    const int part = static_cast<int>(std::min<size_t>(text.size(), 1 << 20));
    const int sent = send(handle, text.data(), part, 0);
    if (sent <= 0) return false;
    text.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

void TestSocket::finishSending() const {
  shutdown(handle, SD_SEND);
}

void TestSocket::reset() {
  const linger abort = {1, 0};
  setsockopt(handle, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&abort), sizeof abort);
  close();
}

void TestSocket::close() {
  if (handle != kClosed) closesocket(handle);
  handle = kClosed;
}

}  // namespace Vantrel::Web::TestSupport
