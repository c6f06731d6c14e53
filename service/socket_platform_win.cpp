#include "service/socket_platform.h"

#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>

#include <cerrno>

#include "runtime/ov_sockets.h"

// Not in every version of the compiler's headers.
#ifndef SIO_TCP_INITIAL_RTO
#define SIO_TCP_INITIAL_RTO _WSAIOW(IOC_VENDOR, 17)
#endif

namespace Vantrel::Web::SocketPlatform {

namespace {

// TCP_INITIAL_RTO_PARAMETERS, with the values that leave the round trip time alone and send the
// first packet once only.
struct InitialRto {
  USHORT roundTripTime = 0xFFFF;
  UCHAR maxSynRetransmissions = 0xFE;
};

bool isLoopback(uint32_t address) {
  return (ntohl(address) >> 24) == 127;
}

// The platform retries a refused connection on the loopback for two seconds, which would turn each
// question whether a new client is up into a long wait. If this fails, connecting is slow but
// right. Wine refuses at once in any case, so that the difference is only to be seen on Windows.
void failFastOnLoopback(SOCKET socket, uint32_t address) {
  if (!isLoopback(address)) return;
  InitialRto rto;
  DWORD unused = 0;
  WSAIoctl(socket, SIO_TCP_INITIAL_RTO, &rto, sizeof rto, nullptr, 0, &unused, nullptr, nullptr);
}

// How long an attempt goes on at most after it was given up.
constexpr long kSliceUs = 20000;

// The header gives an unsigned number for a signed parameter.
constexpr auto kNonBlockingCommand = static_cast<long>(FIONBIO);

// Waits for the end of an attempt that is under way; its code.
int waitForConnection(SOCKET socket, const std::atomic<bool>& giveUp) {
  do {
    fd_set connected;
    FD_ZERO(&connected);
    FD_SET(socket, &connected);
    fd_set failed = connected;
    timeval slice = {0, kSliceUs};
    const int ready = select(0, nullptr, &connected, &failed, &slice);
    if (ready < 0) return WSAGetLastError();
    if (ready == 0) continue;
    int code = 0;
    int size = sizeof code;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&code), &size) != 0) {
      return WSAGetLastError();
    }
    return code;
  } while (!giveUp);
  return WSAEINTR;
}

// A blocking connect cannot be ended from outside without closing its socket, so that one which
// must end is made without blocking.
int connectUntil(SOCKET socket, const sockaddr_in& target, const std::atomic<bool>& giveUp) {
  u_long nonBlocking = 1;
  ioctlsocket(socket, kNonBlockingCommand, &nonBlocking);
  int code = 0;
  if (connect(socket, reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) {
    code = WSAGetLastError();
    if (code == WSAEWOULDBLOCK) code = waitForConnection(socket, giveUp);
  }
  nonBlocking = 0;
  ioctlsocket(socket, kNonBlockingCommand, &nonBlocking);
  return code;
}

}  // namespace

uint64_t createTcp() {
  return socket(AF_INET, SOCK_STREAM, 0);
}

bool connectTcp(uint64_t handle, uint32_t address, uint16_t port, const Connecting& how,
                int32_t* code) {
  if (how.quickRefusal) failFastOnLoopback(handle, address);
  sockaddr_in target = {};
  target.sin_family = AF_INET;
  target.sin_addr.s_addr = address;
  target.sin_port = htons(port);
  if (how.giveUp != nullptr) {
    *code = connectUntil(handle, target, *how.giveUp);
    return *code == 0;
  }
  if (connect(handle, reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0) return true;
  const auto lastError = static_cast<int32_t>(GetLastError());
  *code = lastError != 0 ? lastError : errno;
  return false;
}

int32_t receive(uint64_t handle, char* buffer, int32_t size, int32_t* code) {
  const int count = recv(handle, buffer, size, 0);
  if (count < 0) *code = WSAGetLastError();
  return count;
}

int32_t transmit(uint64_t handle, const char* buffer, int32_t size, int32_t* code) {
  const int count = send(handle, buffer, size, 0);
  if (count < 0) *code = WSAGetLastError();
  return count;
}

// Wine ends a call that is under way by the shutdown alone. On Windows a receive may go on after
// it, so that it is cancelled as well; calls to come fail by the shutdown.
void shutDown(uint64_t handle) {
  shutdown(handle, SD_BOTH);
  CancelIoEx(reinterpret_cast<HANDLE>(static_cast<uintptr_t>(handle)), nullptr);
}

int32_t closeSocket(uint64_t* handle) {
  return ov_sock_close(handle);
}

Resolution resolveIpv4(const std::string& host, std::string* dotted) {
  addrinfo* list = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, nullptr, &list) != 0) return Resolution::kFailed;
  const addrinfo* entry = list;
  while (entry != nullptr && entry->ai_family != AF_INET) entry = entry->ai_next;
  if (entry != nullptr)
    *dotted = inet_ntoa(reinterpret_cast<const sockaddr_in*>(entry->ai_addr)->sin_addr);
  freeaddrinfo(list);
  return entry != nullptr ? Resolution::kFound : Resolution::kNoIpv4;
}

uint32_t parseIpv4(const std::string& dotted) {
  // Some versions of the platform read an empty text as 0.0.0.0.
  return dotted.empty() ? kInvalidAddress : inet_addr(dotted.c_str());
}

}  // namespace Vantrel::Web::SocketPlatform
