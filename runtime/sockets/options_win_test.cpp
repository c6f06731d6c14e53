#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

// What the options were set to; the calls are ours, so that every row works on every platform.
std::map<std::pair<int, int>, std::string> options;
int failure = 0;

int WSAAPI setOption(SOCKET, int level, int option, const char* value, int size) {
  if (failure != 0) {
    WSASetLastError(failure);
    return SOCKET_ERROR;
  }
  options[{level, option}] = std::string(value, static_cast<size_t>(size));
  return 0;
}

int WSAAPI getOption(SOCKET, int level, int option, char* value, int* size) {
  const auto found = options.find({level, option});
  if (failure != 0 || found == options.end()) {
    WSASetLastError(failure != 0 ? failure : WSAENOPROTOOPT);
    return SOCKET_ERROR;
  }
  EXPECT_LE(found->second.size(), static_cast<size_t>(*size));
  std::copy(found->second.begin(), found->second.end(), value);
  return 0;
}

int startFailure = 0;

int WSAAPI startUp(WORD version, LPWSADATA) {
  EXPECT_EQ(514, version);
  return startFailure;
}

using Call = ov_rc (*)(ov_sock*, int32_t*);

struct Option {
  const char* name;
  Call set, get;
  int level, number;
};
const Option kOptions[] = {
    {"rcvlowat", ov_sock_set_rcvlowat, ov_sock_get_rcvlowat, SOL_SOCKET, SO_RCVLOWAT},
    {"sndlowat", ov_sock_set_sndlowat, ov_sock_get_sndlowat, SOL_SOCKET, SO_SNDLOWAT},
    {"reuseaddr", ov_sock_set_reuseaddr, ov_sock_get_reuseaddr, SOL_SOCKET, SO_REUSEADDR},
    {"broadcast", ov_sock_set_broadcast, ov_sock_get_broadcast, SOL_SOCKET, SO_BROADCAST},
    {"tcp_keepalive", ov_sock_set_tcp_keepalive, ov_sock_get_tcp_keepalive, SOL_SOCKET,
     SO_KEEPALIVE},
    {"tcp_nodelay", ov_sock_set_tcp_nodelay, ov_sock_get_tcp_nodelay, IPPROTO_TCP, TCP_NODELAY},
    {"ip_options", ov_sock_set_ip_options, ov_sock_get_ip_options, IPPROTO_IP, IP_OPTIONS},
    {"ip_ttl", ov_sock_set_ip_ttl, ov_sock_get_ip_ttl, IPPROTO_IP, IP_TTL},
    {"ip_mcast_if", ov_sock_set_ip_mcast_if, ov_sock_get_ip_mcast_if, IPPROTO_IP, IP_MULTICAST_IF},
    {"ip_mcast_ttl", ov_sock_set_ip_mcast_ttl, ov_sock_get_ip_mcast_ttl, IPPROTO_IP,
     IP_MULTICAST_TTL},
    {"ip_mcast_loop", ov_sock_set_ip_mcast_loop, ov_sock_get_ip_mcast_loop, IPPROTO_IP,
     IP_MULTICAST_LOOP},
    {"ip_dontfrag", ov_sock_set_ip_dontfrag, ov_sock_get_ip_dontfrag, IPPROTO_IP, IP_DONTFRAGMENT},
    {"ip_pktinfo", ov_sock_set_ip_pktinfo, ov_sock_get_ip_pktinfo, IPPROTO_IP, IP_PKTINFO},
};

}  // namespace

extern "C" {
decltype(&WSAStartup) __imp_WSAStartup = startUp;
decltype(&setsockopt) __imp_setsockopt = setOption;
decltype(&getsockopt) __imp_getsockopt = getOption;
}

namespace {

TEST(SocketNothingTest, IsOneFunctionWithTwentyNames) {
  // The compiler takes functions of two names for two.
  const volatile ov::SocketCall first = ov::kSocketNothing[0];
  for (const volatile ov::SocketCall call : ov::kSocketNothing) {
    const ov::SocketCall a = first;
    const ov::SocketCall b = call;
    EXPECT_EQ(a, b);
  }
}

class SocketOptionsTest : public ::testing::Test {
 protected:
  SocketOptionsTest() {
    options.clear();
    failure = 0;
  }
  ov_sock sock_ = 4;
};

TEST_F(SocketOptionsTest, Start) {
  EXPECT_EQ(0, ov_sock_init());
  startFailure = 10091;
  EXPECT_EQ(10091, ov_sock_init());
}

TEST_F(SocketOptionsTest, EachPairIsItsOption) {
  for (const Option& option : kOptions) {
    SCOPED_TRACE(option.name);
    options.clear();
    failure = 0;
    int32_t value = 77;
    EXPECT_EQ(0, option.set(&sock_, &value));
    ASSERT_EQ(1U, options.size());
    EXPECT_EQ(std::make_pair(option.level, option.number), options.begin()->first);
    EXPECT_EQ(4U, options.begin()->second.size());
    int32_t read = 0;
    EXPECT_EQ(0, option.get(&sock_, &read));
    EXPECT_EQ(77, read);
    failure = WSAENOPROTOOPT;
    EXPECT_EQ(10042, option.set(&sock_, &value));
    EXPECT_EQ(10042, option.get(&sock_, &value));
    EXPECT_EQ(22, option.set(nullptr, &value));
    EXPECT_EQ(22, option.set(&sock_, nullptr));
    EXPECT_EQ(22, option.get(nullptr, &value));
    EXPECT_EQ(22, option.get(&sock_, nullptr));
  }
}

TEST_F(SocketOptionsTest, NumbersOfTheOptions) {
  EXPECT_EQ(0x1002, SO_RCVBUF);
  EXPECT_EQ(0x1001, SO_SNDBUF);
  EXPECT_EQ(0x1004, SO_RCVLOWAT);
  EXPECT_EQ(0x1003, SO_SNDLOWAT);
  EXPECT_EQ(4, SO_REUSEADDR);
  EXPECT_EQ(8, SO_KEEPALIVE);
  EXPECT_EQ(0x20, SO_BROADCAST);
  EXPECT_EQ(1, TCP_NODELAY);
  EXPECT_EQ(6, IPPROTO_TCP);
  EXPECT_EQ(19, IP_PKTINFO);
  EXPECT_EQ(14, IP_DONTFRAGMENT);
  EXPECT_EQ(9, IP_MULTICAST_IF);
  EXPECT_EQ(10, IP_MULTICAST_TTL);
  EXPECT_EQ(11, IP_MULTICAST_LOOP);
  EXPECT_EQ(4, IP_TTL);
  EXPECT_EQ(1, IP_OPTIONS);
}

TEST_F(SocketOptionsTest, BufferSizesHaveEightBytes) {
  int64_t value = 65536;
  EXPECT_EQ(0, ov_sock_set_rcvbuf(&sock_, &value));
  EXPECT_EQ(0, ov_sock_set_sndbuf(&sock_, &value));
  EXPECT_EQ(8U, (options[{SOL_SOCKET, SO_RCVBUF}].size()));
  EXPECT_EQ(8U, (options[{SOL_SOCKET, SO_SNDBUF}].size()));
  options[{SOL_SOCKET, SO_RCVBUF}].resize(4);  // the system fills four of them
  value = -1;
  EXPECT_EQ(0, ov_sock_get_rcvbuf(&sock_, &value));
  EXPECT_EQ(65536, value);
  EXPECT_EQ(0, ov_sock_get_sndbuf(&sock_, &value));
  EXPECT_EQ(65536, value);
}

TEST_F(SocketOptionsTest, Linger) {
  linger value = {1, 7};
  EXPECT_EQ(0, ov_sock_set_linger(&sock_, &value));
  value = {};
  EXPECT_EQ(0, ov_sock_get_linger(&sock_, &value));
  EXPECT_EQ(1, value.l_onoff);
  EXPECT_EQ(7, value.l_linger);
}

TEST_F(SocketOptionsTest, OptionsWithOneDirection) {
  int32_t value = 5;
  EXPECT_EQ(0, ov_sock_set_ip_mtudiscover(&sock_, &value));
  EXPECT_EQ(1U, (options.count({IPPROTO_IP, 14})));
  int32_t group[2] = {1, 2};
  EXPECT_EQ(0, ov_sock_add_ip_mcast_membership(&sock_, group));
  EXPECT_EQ(8U, (options[{IPPROTO_IP, 12}].size()));
  EXPECT_EQ(0, ov_sock_drp_ip_mcast_membership(&sock_, group));
  EXPECT_EQ(8U, (options[{IPPROTO_IP, 13}].size()));
  options[{SOL_SOCKET, SO_ERROR}] = std::string("\4\0\0\0", 4);
  options[{SOL_SOCKET, SO_TYPE}] = std::string("\2\0\0\0", 4);
  EXPECT_EQ(0, ov_sock_get_error(&sock_, &value));
  EXPECT_EQ(4, value);
  EXPECT_EQ(0, ov_sock_get_type(&sock_, &value));
  EXPECT_EQ(2, value);
}

}  // namespace
