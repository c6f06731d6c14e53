// The options on real sockets of the system; which number each one is, the replaced calls show.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

using Call = ov_rc (*)(ov_sock*, int32_t*);

struct Option {
  const char* name;
  Call set, get;
  int type;
  int32_t value;
};
const Option kOptions[] = {
    {"reuseaddr", ov_sock_set_reuseaddr, ov_sock_get_reuseaddr, SOCK_STREAM, 1},
    {"broadcast", ov_sock_set_broadcast, ov_sock_get_broadcast, SOCK_DGRAM, 1},
    {"tcp_keepalive", ov_sock_set_tcp_keepalive, ov_sock_get_tcp_keepalive, SOCK_STREAM, 1},
    {"tcp_nodelay", ov_sock_set_tcp_nodelay, ov_sock_get_tcp_nodelay, SOCK_STREAM, 1},
    {"ip_ttl", ov_sock_set_ip_ttl, ov_sock_get_ip_ttl, SOCK_DGRAM, 17},
    {"ip_mcast_ttl", ov_sock_set_ip_mcast_ttl, ov_sock_get_ip_mcast_ttl, SOCK_DGRAM, 9},
    {"ip_mcast_loop", ov_sock_set_ip_mcast_loop, ov_sock_get_ip_mcast_loop, SOCK_DGRAM, 0},
    {"ip_dontfrag", ov_sock_set_ip_dontfrag, ov_sock_get_ip_dontfrag, SOCK_DGRAM, 1},
    {"ip_mtudiscover", ov_sock_set_ip_mtudiscover, ov_sock_get_ip_dontfrag, SOCK_DGRAM, 1},
    {"ip_pktinfo", ov_sock_set_ip_pktinfo, ov_sock_get_ip_pktinfo, SOCK_DGRAM, 1},
};

class SocketOptionsSystemTest : public ov::SocketFixture {};

TEST_F(SocketOptionsSystemTest, WhatIsSetIsRead) {
  for (const Option& option : kOptions) {
    SCOPED_TRACE(option.name);
    ov_sock sock = make(AF_INET, option.type);
    int32_t value = -1;
    ASSERT_EQ(0, option.get(&sock, &value));
    EXPECT_NE(option.value, value);
    value = option.value;
    EXPECT_EQ(0, option.set(&sock, &value));
    value = -1;
    EXPECT_EQ(0, option.get(&sock, &value));
    EXPECT_EQ(option.value, value);
    ov_sock closed = ov::kClosedSocket;
    EXPECT_EQ(10038, option.set(&closed, &value));
    EXPECT_EQ(10038, option.get(&closed, &value));
  }
}

TEST_F(SocketOptionsSystemTest, BufferSizes) {
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  int64_t value = 16384;
  EXPECT_EQ(0, ov_sock_set_rcvbuf(&sock, &value));
  value = -1;
  EXPECT_EQ(0, ov_sock_get_rcvbuf(&sock, &value));
  EXPECT_EQ(16384, value);
  value = 8192;
  EXPECT_EQ(0, ov_sock_set_sndbuf(&sock, &value));
  value = -1;
  EXPECT_EQ(0, ov_sock_get_sndbuf(&sock, &value));
  EXPECT_EQ(8192, value);
}

TEST_F(SocketOptionsSystemTest, Linger) {
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  linger value = {1, 7};
  EXPECT_EQ(0, ov_sock_set_linger(&sock, &value));
  value = {};
  EXPECT_EQ(0, ov_sock_get_linger(&sock, &value));
  EXPECT_EQ(1, value.l_onoff);
  EXPECT_EQ(7, value.l_linger);
}

TEST_F(SocketOptionsSystemTest, TypeAndError) {
  ov_sock sock = make(AF_INET, SOCK_DGRAM);
  int32_t value = -1;
  EXPECT_EQ(0, ov_sock_get_type(&sock, &value));
  EXPECT_EQ(SOCK_DGRAM, value);
  EXPECT_EQ(0, ov_sock_get_error(&sock, &value));
  EXPECT_EQ(0, value);
}

TEST_F(SocketOptionsSystemTest, Multicast) {
  ov_sock sock = makeReceiver(AF_INET);
  int32_t group[2];
  ov_sock_addr addr = {};
  ASSERT_EQ(0, ov_sock_store_ipaddr("239.1.2.3", &addr, nullptr));
  memcpy(&group[0], &addr.ipv4, sizeof addr.ipv4);
  ASSERT_EQ(0, ov_sock_store_ipaddr("127.0.0.1", &addr, nullptr));
  memcpy(&group[1], &addr.ipv4, sizeof addr.ipv4);
  EXPECT_EQ(0, ov_sock_set_ip_mcast_if(&sock, &group[1]));
  int32_t read = 0;
  EXPECT_EQ(0, ov_sock_get_ip_mcast_if(&sock, &read));
  EXPECT_EQ(group[1], read);
  EXPECT_EQ(0, ov_sock_add_ip_mcast_membership(&sock, group));
  EXPECT_EQ(0, ov_sock_drp_ip_mcast_membership(&sock, group));
  EXPECT_NE(0, ov_sock_drp_ip_mcast_membership(&sock, group));  // no longer a member
}

TEST_F(SocketOptionsSystemTest, LowWaterMarksAreNotOfThisSystem) {
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  int32_t value = 1;
  for (const Call call :
       {ov_sock_set_rcvlowat, ov_sock_get_rcvlowat, ov_sock_set_sndlowat, ov_sock_get_sndlowat}) {
    EXPECT_EQ(10042, call(&sock, &value));
  }
}

TEST_F(SocketOptionsSystemTest, IpOptions) {
  ov_sock sock = make(AF_INET, SOCK_DGRAM);
  int32_t value = 0x01010101;  // four of the option that does nothing
  EXPECT_EQ(0, ov_sock_set_ip_options(&sock, &value));
  value = 0;
  EXPECT_EQ(0, ov_sock_get_ip_options(&sock, &value));
  EXPECT_EQ(0x01010101, value);
}

TEST_F(SocketOptionsSystemTest, StartsAndEndsAreCounted) {
  int starts = 0;  // ours, and those of system libraries in this process
  while (ov_sock_fini() == 0) ++starts;
  EXPECT_GE(starts, 1);
  EXPECT_EQ(10093, ov_sock_fini());
  EXPECT_EQ(0, ov_sock_init());
  EXPECT_EQ(0, ov_sock_init());
  EXPECT_EQ(0, ov_sock_fini());
  EXPECT_EQ(0, ov_sock_fini());
  EXPECT_EQ(10093, ov_sock_fini());
  for (int i = 0; i < starts; ++i) EXPECT_EQ(0, ov_sock_init());
}

TEST_F(SocketOptionsSystemTest, CloseMarksTheSocket) {
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  EXPECT_EQ(0, ov_sock_close(&sock));
  EXPECT_EQ(ov::kClosedSocket, sock);
  EXPECT_EQ(10038, ov_sock_close(&sock));
  EXPECT_EQ(22, ov_sock_close(nullptr));
}

}  // namespace
