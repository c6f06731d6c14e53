#include "service/tcp_socket.h"

#include <charconv>
#include <cstdio>
#include <mutex>
#include <system_error>

#include "runtime/ov_log.h"
#include "service/socket_platform.h"

namespace Vantrel::Web {

namespace {

// Passes over the address after the first one; the connection is attempted in any case.
constexpr int kAddressTries = 3;

// The code of a connection that was ended from outside before it was attempted.
constexpr int32_t kBroken = 1;

// A socket handle as the log shows it.
const void* handleText(uint64_t handle) {
  return reinterpret_cast<const void*>(static_cast<uintptr_t>(handle));
}

// Whether the text is an address as a look-up would give it back: four numbers below 256 without
// leading zeros.
bool isDottedAddress(const std::string& text) {
  const char* at = text.c_str();
  const char* const end = at + text.size();
  for (int part = 0; part < 4; ++part) {
    if (part != 0 && *at++ != '.') return false;
    uint8_t number = 0;
    const auto [behind, error] = std::from_chars(at, end, number);
    if (error != std::errc() || (*at == '0' && behind - at > 1)) return false;
    at = behind;
  }
  return at == end;
}

// The dotted text and the address of a host, both of which a failure tells; the address may be
// invalid. A name is looked up for each of them, an address for neither.
uint32_t addressOf(const std::string& host, std::string& dotted) {
  if (isDottedAddress(host)) {
    dotted = host;
    return SocketPlatform::parseIpv4(host);
  }
  dotted = IpAddress::resolve(host);
  return SocketPlatform::parseIpv4(IpAddress::resolve(host));
}

}  // namespace

void SocketBreaker::breakNow() {
  const std::lock_guard lock(mutex_);
  broken_ = true;
  if (handle_ == SocketPlatform::kClosedSocket) return;
  cut_ = true;
  SocketPlatform::shutDown(handle_);
}

// What is tied after the break is shut down at once.
void SocketBreaker::tie(uint64_t handle) {
  const std::lock_guard lock(mutex_);
  handle_ = handle;
  if (broken_) SocketPlatform::shutDown(handle);
}

void SocketBreaker::untie() {
  const std::lock_guard lock(mutex_);
  handle_ = SocketPlatform::kClosedSocket;
}

Socket::~Socket() {
  close();
}

void Socket::close() {
  if (handle_ == SocketPlatform::kClosedSocket) return;
  if (breaker_ != nullptr) breaker_->untie();
  uint64_t closing = handle_;
  if (const int32_t code = SocketPlatform::closeSocket(&closing)) {
    ov_err("Error closing socket %p (%i)", handleText(handle_), code);
  }
  handle_ = SocketPlatform::kClosedSocket;
}

bool Socket::isBroken() const {
  return breaker_ != nullptr && breaker_->broken();
}

int32_t Socket::recv(char* buffer, int32_t size) {
  if (handle_ == SocketPlatform::kClosedSocket) return -1;
  int32_t code = 0;
  const int32_t count = SocketPlatform::receive(handle_, buffer, size, &code);
  if (count >= 0) return count;
  if (isBroken()) return 0;
  ov_err("Socket::recv() [%p] - recv failed (%i)", handleText(handle_), code);
  return -1;
}

int32_t Socket::send(const char* buffer, int32_t size) {
  if (handle_ == SocketPlatform::kClosedSocket) return -1;
  int32_t code = 0;
  const int32_t count = SocketPlatform::transmit(handle_, buffer, size, &code);
  if (count >= 0) return count;
  if (isBroken()) return -1;
  ov_err("Socket::send() [%p] - send failed (%i)", handleText(handle_), code);
  return -1;
}

TcpSocket::~TcpSocket() = default;

int32_t TcpSocket::connect(const std::string& host, uint16_t port,
                           const ConnectionPurpose& purpose) {
  handle_ = SocketPlatform::createTcp();
  if (handle_ == SocketPlatform::kClosedSocket) {
    ov_err("TcpSocket::create() Failed to create TCP socket");
    return 1;
  }
  SocketPlatform::Connecting how;
  how.quickRefusal = purpose.awaitsNewClient;
  if (purpose.breaker != nullptr) {
    breaker_ = purpose.breaker;
    breaker_->tie(handle_);
    how.giveUp = &breaker_->broken_;
  }
  static constinit const std::atomic<bool> givenUp = true;
  if (purpose.briefly) how.giveUp = &givenUp;
  std::string ip;
  uint32_t address = addressOf(host, ip);
  for (int tries = kAddressTries; address == SocketPlatform::kInvalidAddress && tries > 0;
       --tries) {
    ov_err("TcpSocket::connect() Couldn't resolve address for: %s", host.c_str());
    ip = IpAddress::resolve(host);
    address = SocketPlatform::parseIpv4(ip);
  }
  if (isBroken()) return kBroken;
  int32_t code = 0;
  if (SocketPlatform::connectTcp(handle_, address, port, how, &code)) {
    // A break in between found a socket that was not connected and could not be shut down.
    return isBroken() ? kBroken : 0;
  }
  if (isBroken()) return kBroken;
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
