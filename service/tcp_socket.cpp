#include "service/tcp_socket.h"

#include <cstdio>

#include "runtime/ov_log.h"
#include "service/socket_platform.h"

namespace Vantrel::Web {

namespace {

// Passes over the address after the first one; the connection is attempted in any case.
constexpr int kAddressTries = 3;

// A socket handle as the log shows it.
const void* handleText(uint64_t handle) {
  return reinterpret_cast<const void*>(static_cast<uintptr_t>(handle));
}

}  // namespace

Socket::~Socket() {
  close();
}

void Socket::close() {
  if (handle_ == SocketPlatform::kClosedSocket) return;
  uint64_t closing = handle_;
  if (const int32_t code = SocketPlatform::closeSocket(&closing)) {
    ov_err("Error closing socket %p (%i)", handleText(handle_), code);
  }
  handle_ = SocketPlatform::kClosedSocket;
}

int32_t Socket::recv(char* buffer, int32_t size) {
  if (handle_ == SocketPlatform::kClosedSocket) return -1;
  int32_t code = 0;
  const int32_t count = SocketPlatform::receive(handle_, buffer, size, &code);
  if (count >= 0) return count;
  ov_err("Socket::recv() [%p] - recv failed (%i)", handleText(handle_), code);
  return -1;
}

int32_t Socket::send(const char* buffer, int32_t size) {
  if (handle_ == SocketPlatform::kClosedSocket) return -1;
  int32_t code = 0;
  const int32_t count = SocketPlatform::transmit(handle_, buffer, size, &code);
  if (count >= 0) return count;
  ov_err("Socket::send() [%p] - send failed (%i)", handleText(handle_), code);
  return -1;
}

TcpSocket::~TcpSocket() = default;

int32_t TcpSocket::connect(const std::string& host, uint16_t port) {
  handle_ = SocketPlatform::createTcp();
  if (handle_ == SocketPlatform::kClosedSocket) {
    ov_err("TcpSocket::create() Failed to create TCP socket");
    return 1;
  }
  std::string ip = IpAddress::resolve(host);
  uint32_t address = SocketPlatform::parseIpv4(IpAddress::resolve(host));
  for (int tries = kAddressTries; address == SocketPlatform::kInvalidAddress && tries > 0;
       --tries) {
    ov_err("TcpSocket::connect() Couldn't resolve address for: %s", host.c_str());
    ip = IpAddress::resolve(host);
    address = SocketPlatform::parseIpv4(ip);
  }
  int32_t code = 0;
  if (SocketPlatform::connectTcp(handle_, address, port, &code)) return 0;
  ov_err(
      "TcpSocket::connect() Connection failed for socket %p error: (%i) Address: %s IP: %s "
      "inet_addr: %i",
      static_cast<const void*>(&handle_), code, host.c_str(), ip.c_str(),
      static_cast<int32_t>(address));
  return code;
}

std::string IpAddress::resolve(const std::string& host) {
  std::string dotted;
  switch (SocketPlatform::resolveIpv4(host, &dotted)) {
    case SocketPlatform::Resolution::kFound:
      return dotted;
    case SocketPlatform::Resolution::kFailed:
      ov_err("IpAddress::resolve() Unable to resolve IP address");
      return {};
    case SocketPlatform::Resolution::kNoIpv4:
      ov_err("IpAddress::resolve() Unable to resolve IP address (AF_INET not found)");
      static_cast<void>(std::fflush(stdout));
      return {};
  }
  return {};
}

}  // namespace Vantrel::Web
