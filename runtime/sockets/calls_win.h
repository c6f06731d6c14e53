// What the Windows sources of the sockets share: an owned socket, codes, address records in the
// system's form, look-ups of addresses, and the call that receives a message with its control data.
// Not part of the public header.
#pragma once

#include <winsock2.h>
#include <mswsock.h>
#include <ws2tcpip.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <utility>

#include "runtime/errors/last_code.h"
#include "runtime/ov_sockets.h"
#include "runtime/sockets/address.h"

namespace ov {

// The record has the system's layout for both families.
static_assert(sizeof(ov_sock_addr) == sizeof(sockaddr_in6));
static_assert(offsetof(ov_sock_addr, port) == offsetof(sockaddr_in6, sin6_port));
static_assert(offsetof(ov_sock_addr, ipv4) == offsetof(sockaddr_in, sin_addr));
static_assert(offsetof(ov_sock_addr, ipv6) == offsetof(sockaddr_in6, sin6_addr));
static_assert(offsetof(ov_sock_addr, scope_id) == offsetof(sockaddr_in6, sin6_scope_id));
static_assert(OV_SOCK_IPV4 == AF_INET && OV_SOCK_IPV6 == AF_INET6);
static_assert(OV_EWOULDBLOCK == WSAEWOULDBLOCK && OV_EMSGSIZE == WSAEMSGSIZE);
static_assert(OV_ENOTCONN == WSAENOTCONN && OV_ETIMEDOUT == WSAETIMEDOUT);

// 0 for a call that succeeded with 0, else its code.
inline ov_rc socket_code(int result) {
  return result == 0 ? 0 : last_code();
}

// Closes its socket when it goes, unless that was released.
class OwnedSocket {
 public:
  explicit OwnedSocket(SOCKET socket) : socket_(socket) {}
  ~OwnedSocket() {
    if (*this) closesocket(socket_);
  }
  OwnedSocket(const OwnedSocket&) = delete;
  OwnedSocket& operator=(const OwnedSocket&) = delete;

  explicit operator bool() const { return socket_ != INVALID_SOCKET; }
  SOCKET get() const { return socket_; }
  SOCKET release() { return std::exchange(socket_, INVALID_SOCKET); }

 private:
  SOCKET socket_;
};

enum class Readiness { kReading, kWriting };

// Waits until the socket can be read or written: above 0 when it can, 0 when the time is up, below
// 0 for a failure.
inline int wait_socket(SOCKET socket, Readiness readiness, long milliseconds) {
  fd_set set;
  set.fd_count = 1;
  set.fd_array[0] = socket;
  timeval limit = {milliseconds / 1000, milliseconds % 1000 * 1000};
  const bool reading = readiness == Readiness::kReading;
  return select(0, reading ? &set : nullptr, reading ? nullptr : &set, nullptr, &limit);
}

// The system's size of an address of that family; 0 for a family that the record does not hold.
inline int address_size(int family) {
  if (family == AF_INET) return sizeof(sockaddr_in);
  return family == AF_INET6 ? sizeof(sockaddr_in6) : 0;
}

inline const sockaddr* to_system(const ov_sock_addr* addr) {
  return reinterpret_cast<const sockaddr*>(addr);
}

inline sockaddr* to_system(ov_sock_addr* addr) {
  return reinterpret_cast<sockaddr*>(addr);
}

// The record of a system's address; all zero for a family that it does not hold.
inline ov_sock_addr to_record(const sockaddr* address) {
  ov_sock_addr addr = {};
  memcpy(&addr, address, static_cast<size_t>(address_size(address->sa_family)));
  return addr;
}

struct FreeAddresses {
  void operator()(addrinfo* head) const { freeaddrinfo(head); }
};

// The head of the list of results.
using AddressList = std::unique_ptr<addrinfo, FreeAddresses>;

// Looks a host and a port up; each may be null. The list is not empty on success.
inline ov_rc look_up(const char* node, const char* service, const addrinfo& hints,
                     AddressList* list) {
  addrinfo* head = nullptr;
  const int result = getaddrinfo(node, service, &hints, &head);
  if (result != 0) return lookup_code(result, WSAGetLastError());
  list->reset(head);
  return head == nullptr ? WSAHOST_NOT_FOUND : 0;
}

// The system's call that receives a message with its control data; null until a socket has asked
// for it; the same for all sockets.
extern std::atomic<LPFN_WSARECVMSG> receive_message;

}  // namespace ov
