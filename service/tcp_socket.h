// A blocking TCP client socket, the way to end its waiting from outside, and the look-up of IPv4
// addresses. No time limits. A socket belongs to the thread that created it. Nothing here throws
// but the breaker's construction: failures are return values and log lines.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "threads/mutex.h"

namespace Vantrel::Web {

// Lets another thread end what a worker's thread waits for at a socket. Owned by the worker, whose
// thread makes its sockets with it, one at a time.
class SocketBreaker {
 public:
  // Shuts the present socket down; from now on no other connects. Any thread.
  void breakNow();
  bool broken() const { return broken_; }
  // Whether an exchange was under way when it was broken, and so came to nothing.
  bool hasCut() const { return cut_; }

 private:
  friend class Socket;
  friend class TcpSocket;
  void tie(uint64_t handle);
  void untie();

  std::atomic<bool> broken_{false};
  std::atomic<bool> cut_{false};
  Mutex mutex_;  // guards only the handle, so that no other socket of its number is shut down
  uint64_t handle_ = ~uint64_t{0};  // all ones when no socket is tied
};

// What a connection is made for.
struct ConnectionPurpose {
  bool awaitsNewClient = false;      // a client was just started; a refusal is believed at once
  SocketBreaker* breaker = nullptr;  // null for an exchange that nobody ends from outside
  bool briefly = false;  // given up at once, if the other side does not take it in that moment
};

class Socket {
 public:
  Socket() = default;
  virtual ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  // Does nothing on a closed socket.
  void close();
  // The number of bytes received, 0 when the peer has closed or the exchange was broken, or -1.
  int32_t recv(char* buffer, int32_t size);
  // The number of bytes accepted, or -1.
  int32_t send(const char* buffer, int32_t size);

 protected:
  // What was ended on purpose is no failure and leaves no line.
  bool isBroken() const;

  uint64_t handle_ = ~uint64_t{0};  // all ones when closed
  SocketBreaker* breaker_ = nullptr;
};

class TcpSocket : public Socket {
 public:
  TcpSocket() = default;
  ~TcpSocket() override;

  // Creates the socket and connects it. 0, or a non-zero code; then the socket may still be open.
  int32_t connect(const std::string& host, uint16_t port, const ConnectionPurpose& purpose = {});
};

class IpAddress {
 public:
  // The dotted IPv4 text of a host name or address; empty if there is none.
  static std::string resolve(const std::string& host);
};

}  // namespace Vantrel::Web
