// For tests: the use of sockets, the log, some sockets on the loopback address, and the system's
// own calls behind replaced ones.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/captured_log.h"

namespace ov {

using Messages = std::vector<std::string>;

constexpr ov_sock kClosedSocket = ~ov_sock{0};

using SocketCall = ov_rc (*)(ov_sock*, int32_t*);

// The calls that have no counterpart on this platform.
constexpr SocketCall kSocketNothing[] = {
    ov_sock_get_bindtodevice, ov_sock_set_bindtodevice, ov_sock_get_ip_mtudiscover,
    ov_sock_get_ip_rcverr,    ov_sock_set_ip_rcverr,    ov_sock_get_ip_tos,
    ov_sock_set_ip_tos,       ov_sock_get_priority,     ov_sock_set_priority,
    ov_sock_get_tcp_keepcnt,  ov_sock_set_tcp_keepcnt,  ov_sock_get_tcp_keepidl,
    ov_sock_set_tcp_keepidl,  ov_sock_get_tcp_keepitvl, ov_sock_set_tcp_keepitvl,
    ov_sock_get_tcp_linger,   ov_sock_set_tcp_linger,   ov_sock_get_tcp_outq_size,
    ov_sock_get_timestamp,    ov_sock_set_timestamp,
};

// The function of that name and type in a library of the system.
template <typename Function>
Function system_function(const char* library, const char* name) {
  const HMODULE module = LoadLibraryA(library);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

template <typename Function>
Function socket_function(const char* name) {
  return system_function<Function>("ws2_32.dll", name);
}

inline sockaddr* system_address(ov_sock_addr* addr) {
  return reinterpret_cast<sockaddr*>(addr);
}

inline int system_size(int family) {
  return family == AF_INET ? static_cast<int>(sizeof(sockaddr_in))
                           : static_cast<int>(sizeof(sockaddr_in6));
}

// The address that a socket is bound to.
inline ov_sock_addr own_address(ov_sock sock) {
  ov_sock_addr addr = {};
  int size = sizeof addr;
  EXPECT_EQ(0, getsockname(sock, system_address(&addr), &size));
  return addr;
}

inline ov_sock_addr loopback(uint16_t family) {
  ov_sock_addr addr = {};
  addr.family = family;
  if (family == AF_INET) {
    addr.ipv4 = htonl(INADDR_LOOPBACK);
  } else {
    addr.ipv6[15] = 1;
  }
  return addr;
}

class SocketFixture : public ::testing::Test {
 protected:
  SocketFixture() { EXPECT_EQ(0, ov_sock_init()); }
  ~SocketFixture() override {
    for (const ov_sock sock : opened_) closesocket(sock);
    ov_sock_fini();
  }

  // Closed with the fixture, unless the test does it.
  ov_sock keep(ov_sock sock) {
    EXPECT_NE(kClosedSocket, sock);
    opened_.push_back(sock);
    return sock;
  }
  ov_sock make(int family, int type) { return keep(socket(family, type, 0)); }
  // A datagram socket with a port of its own.
  ov_sock makeReceiver(uint16_t family) {
    const ov_sock sock = make(family, SOCK_DGRAM);
    ov_sock_addr addr = loopback(family);
    EXPECT_EQ(0, bind(sock, system_address(&addr), system_size(family)));
    return sock;
  }
  // A datagram socket that sends to the receiver.
  ov_sock makeSender(ov_sock receiver) {
    ov_sock_addr addr = own_address(receiver);
    const ov_sock sock = make(addr.family, SOCK_DGRAM);
    EXPECT_EQ(0, connect(sock, system_address(&addr), system_size(addr.family)));
    return sock;
  }

  CapturedLog log_;

 private:
  std::vector<ov_sock> opened_;
};

}  // namespace ov
