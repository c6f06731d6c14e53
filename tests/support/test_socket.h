// A plain TCP socket for test servers, over the platform's calls. An object belongs to one thread
// at a time and closes its socket when it goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Vantrel::Web::TestSupport {

class TestSocket {
 public:
  TestSocket() = default;
  explicit TestSocket(uint64_t socketHandle) : handle(socketHandle) {}
  ~TestSocket() { close(); }
  TestSocket(TestSocket&& other) noexcept : handle(other.handle) { other.handle = kClosed; }
  TestSocket& operator=(TestSocket&& other) noexcept;

  // A socket that listens on 127.0.0.1; port 0 takes a free one. Behind a short queue of
  // connections that nobody accepts others wait. Throws std::runtime_error.
  static TestSocket listenLoopback(uint16_t port, int queue = kLongQueue);
  // A connection to 127.0.0.1; closed if it failed.
  static TestSocket connectLoopback(uint16_t port);
  bool isOpen() const { return handle != kClosed; }
  uint16_t localPort() const;
  // Whether data, a connection or the peer's close is there within the time.
  bool waitReadable(int milliseconds) const;
  TestSocket accept() const;
  // Number of bytes, 0 for the peer's close, negative for a failure.
  long receive(char* buffer, size_t size) const;
  // False when the peer does not take all of it.
  bool sendAll(std::string_view text) const;
  // Says that nothing more is sent; receiving goes on.
  void finishSending() const;
  // Closes by a reset of the connection instead of an orderly end.
  void reset();
  void close();

 private:
  static constexpr uint64_t kClosed = ~uint64_t{0};
  static constexpr int kLongQueue = 0x7FFFFFFF;  // as long as the platform allows

  uint64_t handle = kClosed;
};

}  // namespace Vantrel::Web::TestSupport
