// The platform's socket calls below TcpSocket and IpAddress, one function each and without log
// lines. Codes are the platform's own.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web::SocketPlatform {

inline constexpr uint64_t kClosedSocket = ~uint64_t{0};
inline constexpr uint32_t kInvalidAddress = 0xFFFFFFFFU;

// A new IPv4 stream socket, or kClosedSocket.
uint64_t createTcp();

// Connects to an address in network byte order. 0, or the code of the failure (may be 0 too, when
// the platform names none; `connected` tells).
bool connectTcp(uint64_t handle, uint32_t address, uint16_t port, int32_t* code);

// Number of bytes, 0 for the peer's close, or -1 with the code of the failure.
int32_t receive(uint64_t handle, char* buffer, int32_t size, int32_t* code);
int32_t transmit(uint64_t handle, const char* buffer, int32_t size, int32_t* code);

// Closes; 0 or a code.
int32_t closeSocket(uint64_t* handle);

enum class Resolution { kFound, kFailed, kNoIpv4 };

// Looks a host up and writes its first IPv4 address as dotted text.
Resolution resolveIpv4(const std::string& host, std::string* dotted);

// The address of a dotted text in network byte order; kInvalidAddress for anything else.
uint32_t parseIpv4(const std::string& dotted);

}  // namespace Vantrel::Web::SocketPlatform
