// A blocking TCP client socket, and the look-up of IPv4 addresses. No time limits and no socket
// options. An object belongs to the thread that created it. Nothing here throws: failures are
// return values and log lines.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

class Socket {
 public:
  Socket() = default;
  virtual ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  // Does nothing on a closed socket.
  void close();
  // The number of bytes received, 0 when the peer has closed, or -1.
  int32_t recv(char* buffer, int32_t size);
  // The number of bytes accepted, or -1.
  int32_t send(const char* buffer, int32_t size);

 protected:
  uint64_t handle_ = ~uint64_t{0};  // all ones when closed
};

class TcpSocket : public Socket {
 public:
  TcpSocket() = default;
  ~TcpSocket() override;

  // Creates the socket and connects it. 0, or a non-zero code; then the socket may still be open.
  int32_t connect(const std::string& host, uint16_t port);
};

class IpAddress {
 public:
  // The dotted IPv4 text of a host name or address; empty if there is none.
  static std::string resolve(const std::string& host);
};

}  // namespace Vantrel::Web
