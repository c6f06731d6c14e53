#include "runtime/ov_sockets.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

ov_sock_addr v4(uint8_t a, uint8_t b, uint8_t c, uint8_t d) {
  ov_sock_addr addr = {};
  addr.family = 2;
  const uint8_t bytes[4] = {a, b, c, d};
  memcpy(&addr.ipv4, bytes, sizeof bytes);
  return addr;
}

ov_sock_addr v6(uint8_t first, uint8_t last) {
  ov_sock_addr addr = {};
  addr.family = 23;
  addr.ipv6[0] = first;
  addr.ipv6[15] = last;
  return addr;
}

TEST(SocketAddressTest, Ports) {
  ov_sock_addr addr = v4(1, 2, 3, 4);
  EXPECT_EQ(0, ov_sock_set_port(&addr, 8080));
  EXPECT_EQ(36895, ov_sock_get_port(&addr));  // network order
  addr.family = 0;
  EXPECT_EQ(0, ov_sock_get_port(&addr));
  EXPECT_EQ(22, ov_sock_set_port(&addr, 1));
  EXPECT_EQ(0, ov_sock_get_port(nullptr));
  EXPECT_EQ(22, ov_sock_set_port(nullptr, 1));
}

TEST(SocketAddressTest, ScopeIds) {
  ov_sock_addr addr = v6(254, 1);
  EXPECT_EQ(0, ov_sock_set_scope_id(&addr, "fe80::1%12"));
  EXPECT_EQ(12U, addr.scope_id);
  EXPECT_EQ(0, ov_sock_set_scope_id(&addr, "%4294967295"));
  EXPECT_EQ(4294967295U, addr.scope_id);
  for (const char* text : {"fe80::1", "fe80::1%", "%1x", "%4294967296", "%-1", ""}) {
    EXPECT_EQ(22, ov_sock_set_scope_id(&addr, text)) << text;
  }
  EXPECT_EQ(4294967295U, addr.scope_id);
  EXPECT_EQ(22, ov_sock_set_scope_id(nullptr, "%1"));
  EXPECT_EQ(22, ov_sock_set_scope_id(&addr, nullptr));
}

TEST(SocketAddressTest, CopyTakesWhatTheFamilyUses) {
  ov_sock_addr from = v4(1, 2, 3, 4);
  from.scope_id = 7;
  ov_sock_addr to = {};
  int32_t isIpv6 = 9;
  EXPECT_EQ(0, ov_sock_copy_addr(&to, &from, &isIpv6));
  EXPECT_EQ(0, isIpv6);
  EXPECT_EQ(from.ipv4, to.ipv4);
  EXPECT_EQ(0U, to.scope_id);
  from = v6(254, 3);
  from.scope_id = 7;
  EXPECT_EQ(0, ov_sock_copy_addr(&to, &from, &isIpv6));
  EXPECT_EQ(1, isIpv6);
  EXPECT_EQ(0, memcmp(&from, &to, sizeof to));
  EXPECT_EQ(0, ov_sock_copy_addr(&to, &from, nullptr));
  from.family = 1;
  EXPECT_EQ(22, ov_sock_copy_addr(&to, &from, &isIpv6));
  EXPECT_EQ(22, ov_sock_copy_addr(nullptr, &to, &isIpv6));
  EXPECT_EQ(22, ov_sock_copy_addr(&to, nullptr, &isIpv6));
}

TEST(SocketAddressTest, Equality) {
  ov_sock_addr a = v4(1, 2, 3, 4);
  ov_sock_addr b = a;
  int32_t answer = 9;
  b.port = 1;
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&a, &b, &answer));
  EXPECT_EQ(1, answer);
  EXPECT_EQ(0, ov_sock_addr_is_equal(&a, &b, &answer));
  EXPECT_EQ(0, answer);
  a.port = 1;
  EXPECT_EQ(0, ov_sock_addr_is_equal(&a, &b, &answer));
  EXPECT_EQ(1, answer);
  b = v4(1, 2, 3, 5);
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&a, &b, &answer));
  EXPECT_EQ(0, answer);
  a = v6(32, 1);
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&a, &b, &answer));
  EXPECT_EQ(0, answer);
  b = v6(32, 1);
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&a, &b, &answer));
  EXPECT_EQ(1, answer);
  b = v6(32, 2);
  EXPECT_EQ(0, ov_sock_addr_is_equal(&a, &b, &answer));
  EXPECT_EQ(0, answer);
  a = {};
  EXPECT_EQ(0, ov_sock_addr_is_equal(&a, &a, &answer));
  EXPECT_EQ(0, answer);  // no addresses
  for (const auto compare : {ov_sock_addr_is_equal, ov_sock_ipaddr_is_equal}) {
    EXPECT_EQ(22, compare(nullptr, &b, &answer));
    EXPECT_EQ(22, compare(&a, nullptr, &answer));
    EXPECT_EQ(22, compare(&a, &b, nullptr));
  }
}

TEST(SocketAddressTest, NullAndLoopback) {
  const ov_sock_addr none = {};
  EXPECT_EQ(1, ov_sock_is_null_ipaddr(&none));
  EXPECT_EQ(1, ov_sock_is_null_ipaddr(nullptr));
  EXPECT_EQ(0, ov_sock_is_loopback_ipaddr(&none));
  struct Case {
    ov_sock_addr addr;
    int32_t null, loopback;
  };
  const Case cases[] = {
      {v4(0, 0, 0, 0), 1, 0},     {v4(0, 0, 0, 1), 0, 0},   {v4(127, 0, 0, 1), 0, 1},
      {v4(127, 255, 1, 2), 0, 1}, {v4(128, 0, 0, 1), 0, 0}, {v6(0, 0), 1, 0},
      {v6(0, 1), 0, 1},           {v6(0, 2), 0, 0},         {v6(127, 1), 0, 0}};
  for (const Case& c : cases) {
    EXPECT_EQ(c.null, ov_sock_is_null_ipaddr(&c.addr));
    EXPECT_EQ(c.loopback, ov_sock_is_loopback_ipaddr(&c.addr));
  }
}

TEST(SocketAddressTest, UnknownFamilyIsOfNoKind) {
  ov_sock_addr addr = v6(255, 1);
  addr.family = 7;
  int32_t answer = 9;
  EXPECT_EQ(0, ov_sock_is_null_ipaddr(&addr));
  EXPECT_EQ(0, ov_sock_is_loopback_ipaddr(&addr));
  EXPECT_EQ(0, ov_sock_is_valid_mcast_addr(&addr));
  EXPECT_EQ(0, ov_sock_is_private_network(&addr, &answer));
  EXPECT_EQ(0, answer);
}

TEST(SocketAddressTest, MulticastAndPrivate) {
  struct Case {
    ov_sock_addr addr;
    int32_t multicast, isPrivate;
  };
  const Case cases[] = {{v4(223, 255, 255, 255), 0, 0},
                        {v4(224, 0, 0, 0), 1, 0},
                        {v4(239, 255, 255, 255), 1, 0},
                        {v4(240, 0, 0, 0), 0, 0},
                        {v4(255, 255, 255, 255), 0, 0},
                        {v6(255, 1), 1, 0},
                        {v6(254, 1), 0, 0},
                        {v4(10, 1, 2, 3), 0, 1},
                        {v4(11, 0, 0, 0), 0, 0},
                        {v4(192, 168, 9, 9), 0, 1},
                        {v4(192, 169, 0, 0), 0, 0},
                        {v4(172, 15, 0, 0), 0, 0},
                        {v4(172, 16, 0, 0), 0, 1},
                        {v4(172, 31, 255, 255), 0, 1},
                        {v4(172, 32, 0, 0), 0, 0}};
  for (const Case& c : cases) {
    int32_t answer = 9;
    EXPECT_EQ(c.multicast, ov_sock_is_valid_mcast_addr(&c.addr));
    EXPECT_EQ(0, ov_sock_is_private_network(&c.addr, &answer));
    EXPECT_EQ(c.isPrivate, answer);
  }
  int32_t answer = 9;
  EXPECT_EQ(0, ov_sock_is_valid_mcast_addr(nullptr));
  EXPECT_EQ(22, ov_sock_is_private_network(nullptr, &answer));
  EXPECT_EQ(22, ov_sock_is_private_network(&cases[0].addr, nullptr));
}

}  // namespace
