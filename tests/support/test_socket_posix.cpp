#include "tests/support/test_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
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

int descriptor(uint64_t handle) {
  return static_cast<int>(handle);
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
  TestSocket listener(static_cast<uint64_t>(socket(AF_INET, SOCK_STREAM, 0)));
  const sockaddr_in address = loopback(port);
  const int on = 1;
  setsockopt(descriptor(listener.handle), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(descriptor(listener.handle), reinterpret_cast<const sockaddr*>(&address),
           sizeof address) != 0 ||
      listen(descriptor(listener.handle), queue) != 0) {
    throw std::runtime_error("test server: no port to listen on");
  }
  return listener;
}

TestSocket TestSocket::connectLoopback(uint16_t port) {
  TestSocket socket(static_cast<uint64_t>(::socket(AF_INET, SOCK_STREAM, 0)));
  const sockaddr_in address = loopback(port);
  if (connect(descriptor(socket.handle), reinterpret_cast<const sockaddr*>(&address),
              sizeof address) != 0) {
    socket.close();
  }
  return socket;
}

uint16_t TestSocket::localPort() const {
  sockaddr_in address = {};
  socklen_t size = sizeof address;
  getsockname(descriptor(handle), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool TestSocket::waitReadable(int milliseconds) const {
  pollfd entry = {};
  entry.fd = descriptor(handle);
  entry.events = POLLIN;
  return poll(&entry, 1, milliseconds) > 0;
}

TestSocket TestSocket::accept() const {
  const int accepted = ::accept(descriptor(handle), nullptr, nullptr);
  if (accepted < 0) return TestSocket();
  const int on = 1;
  setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return TestSocket(static_cast<uint64_t>(accepted));
}

long TestSocket::receive(char* buffer, size_t size) const {
  return recv(descriptor(handle), buffer, size, 0);
}

bool TestSocket::sendAll(std::string_view text) const {
  while (!text.empty()) {
    const ssize_t sent = send(descriptor(handle), text.data(), text.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    text.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

void TestSocket::finishSending() const {
  shutdown(descriptor(handle), SHUT_WR);
}

void TestSocket::reset() {
  const linger abort = {1, 0};
  setsockopt(descriptor(handle), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
  close();
}

void TestSocket::close() {
  if (handle != kClosed) ::close(descriptor(handle));
  handle = kClosed;
}

}  // namespace Vantrel::Web::TestSupport
