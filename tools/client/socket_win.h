// Winsock for the server: its start, a socket that closes itself, and the calls the server makes.
#pragma once

#include <winsock2.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace Vantrel::StandIn {

// Winsock is up while one of these lives. The constructor throws std::runtime_error.
class WinsockSession {
 public:
  WinsockSession();
  ~WinsockSession();
  WinsockSession(const WinsockSession&) = delete;
  WinsockSession& operator=(const WinsockSession&) = delete;
};

// Owns one socket; used by one thread at a time. A blocked receive cannot be ended from another
// thread everywhere, so a thread that must be able to stop waits in short steps instead.
class Socket {
 public:
  Socket() = default;
  explicit Socket(SOCKET handle) : handle_(handle) {}
  ~Socket();
  Socket(Socket&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_SOCKET)) {}
  Socket& operator=(Socket&& other) noexcept;

  SOCKET handle() const { return handle_; }
  bool open() const { return handle_ != INVALID_SOCKET; }

  // Whether data, an end or a connection is there within that time.
  bool readableWithin(int milliseconds) const;

  // False when the peer is gone.
  bool sendAll(std::string_view bytes) const;

  // The number of bytes, 0 at the peer's end, negative for an error.
  int receive(char* buffer, int size) const { return recv(handle_, buffer, size, 0); }

  // Tells the peer that no more comes, and takes what it still sends, so that closing does not
  // reset the connection under its unread bytes. Waits for the peer's end, but not for ever.
  void finish() const;

 private:
  SOCKET handle_ = INVALID_SOCKET;
};

// A listening socket on 127.0.0.1; port 0 takes a free one. Throws std::runtime_error.
Socket listenOn(std::uint16_t port);

// The port of a listening socket.
std::uint16_t portOf(const Socket& listener);

// The next connection, or a closed socket when none comes within that many milliseconds.
Socket acceptWithin(const Socket& listener, int milliseconds);

}  // namespace Vantrel::StandIn
