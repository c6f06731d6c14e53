// The platform's socket calls below TcpSocket and IpAddress, one function each and without log
// lines. Codes are the platform's own.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace Vantrel::Web::SocketPlatform {

inline constexpr uint64_t kClosedSocket = ~uint64_t{0};
inline constexpr uint32_t kInvalidAddress = 0xFFFFFFFFU;

// A new IPv4 stream socket, or kClosedSocket.
uint64_t createTcp();

// How a connection is made.
struct Connecting {
  // A refusal on the loopback is believed at once. Only for a client that was just started and does
  // not listen yet: a client whose queue is full for a moment refuses too.
  bool quickRefusal = false;
  // Ends the attempt when it becomes true, or after a moment when it is; null for an attempt that
  // nobody ends.
  const std::atomic<bool>* giveUp = nullptr;
};

// Connects to an address in network byte order. On false `code` holds the code of the failure, or 0
// when the platform names none.
bool connectTcp(uint64_t handle, uint32_t address, uint16_t port, const Connecting& how,
                int32_t* code);

// Number of bytes, 0 for the peer's close, or -1 with the code of the failure.
int32_t receive(uint64_t handle, char* buffer, int32_t size, int32_t* code);
int32_t transmit(uint64_t handle, const char* buffer, int32_t size, int32_t* code);

// Ends what another thread waits for on the socket, and all that it would wait for later. The
// socket stays open.
void shutDown(uint64_t handle);

// Closes; 0 or a code.
int32_t closeSocket(uint64_t* handle);

enum class Resolution { kFound, kFailed, kNoIpv4 };

// Looks a host up and writes its first IPv4 address as dotted text.
Resolution resolveIpv4(const std::string& host, std::string* dotted);

// The address of a dotted text in network byte order; kInvalidAddress for anything else.
uint32_t parseIpv4(const std::string& dotted);

}  // namespace Vantrel::Web::SocketPlatform
