#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

int failure = 0;

INT WSAAPI nameInfo(const SOCKADDR* address, socklen_t length, PCHAR node, DWORD nodeSize,
                    PCHAR service, DWORD serviceSize, INT flags) {
  if (failure != 0) {
    WSASetLastError(failure);
    return failure;
  }
  EXPECT_EQ(NI_NUMERICHOST, flags);
  static const auto real = ov::socket_function<decltype(&nameInfo)>("getnameinfo");
  return real(address, length, node, nodeSize, service, serviceSize, flags);
}

}  // namespace

extern "C" {
decltype(&getnameinfo) __imp_getnameinfo = nameInfo;
}

namespace {

class SocketTextTest : public ov::SocketFixture {
 protected:
  SocketTextTest() { failure = 0; }
  static std::string textOf(const ov_sock_addr& addr) {
    char text[65];
    EXPECT_EQ(0, ov_sock_get_ipaddrstr(&addr, text, sizeof text));
    return text;
  }
};

struct Text {
  const char* text;
  int32_t family;
};
const Text kTexts[] = {{"127.0.0.1", 2}, {"0.0.0.0", 2}, {"255.255.255.255", 2}, {"10.20.30.40", 2},
                       {"::1", 23},      {"::", 23},     {"2001:db8::ff00", 23}, {"ff02::1", 23}};

TEST_F(SocketTextTest, ThereAndBack) {
  for (const Text& c : kTexts) {
    SCOPED_TRACE(c.text);
    ov_sock_addr addr = {};
    ASSERT_EQ(0, ov_sock_pton(c.family, c.text, &addr));
    EXPECT_EQ(c.family, addr.family);
    EXPECT_EQ(0, addr.port);
    char text[65];
    EXPECT_EQ(0, ov_sock_ntop(c.family, &addr, text, sizeof text));
    EXPECT_STREQ(c.text, text);
    addr.family = 0;  // the argument tells which address is meant
    EXPECT_EQ(0, ov_sock_ntop(c.family, &addr, text, sizeof text));
    EXPECT_STREQ(c.text, text);
  }
}

TEST_F(SocketTextTest, BytesStandWhereTheRecordHasThem) {
  ov_sock_addr addr = {};
  ASSERT_EQ(0, ov_sock_pton(2, "1.2.3.4", &addr));
  const uint8_t ipv4[4] = {1, 2, 3, 4};
  EXPECT_EQ(0, memcmp(ipv4, &addr.ipv4, sizeof ipv4));
  ASSERT_EQ(0, ov_sock_pton(23, "102:304::f10", &addr));
  const uint8_t ipv6[16] = {1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 15, 16};
  EXPECT_EQ(0, memcmp(ipv6, addr.ipv6, sizeof ipv6));
}

TEST_F(SocketTextTest, TextWithAPort) {
  ov_sock_addr addr = {};
  EXPECT_EQ(0, ov_sock_pton(23, "[::1]:8080", &addr));
  EXPECT_EQ(36895, ov_sock_get_port(&addr));
  EXPECT_EQ(0, ov_sock_pton(2, "1.2.3.4:8080", &addr));
  EXPECT_EQ(36895, ov_sock_get_port(&addr));
}

TEST_F(SocketTextTest, SizeOfTheText) {
  ov_sock_addr addr = {};
  ASSERT_EQ(0, ov_sock_pton(2, "10.20.30.40", &addr));
  for (size_t size = 1; size <= 12; ++size) {
    char text[16];
    memset(text, '#', sizeof text);
    EXPECT_EQ(size == 12 ? 0 : 122, ov_sock_ntop(2, &addr, text, size));
    for (size_t i = size; i < sizeof text; ++i) EXPECT_EQ('#', text[i]);
  }
}

TEST_F(SocketTextTest, BadArguments) {
  ov_sock_addr addr = {};
  char text[65] = "x";
  for (const int32_t family : {0, 1, 6, 24, -1}) {
    EXPECT_EQ(22, ov_sock_ntop(family, &addr, text, sizeof text)) << family;
  }
  EXPECT_EQ(22, ov_sock_ntop(2, nullptr, text, sizeof text));
  EXPECT_EQ(22, ov_sock_ntop(2, &addr, nullptr, sizeof text));
  EXPECT_EQ(22, ov_sock_ntop(2, &addr, text, 0));
  EXPECT_EQ(22, ov_sock_pton(2, nullptr, &addr));
  EXPECT_EQ(22, ov_sock_pton(2, "1.2.3.4", nullptr));
  EXPECT_STREQ("x", text);
}

TEST_F(SocketTextTest, TextThatIsNoAddress) {
  ov_sock_addr addr = ov::loopback(AF_INET);
  const ov_sock_addr before = addr;
  for (const char* text : {"", "x", "1.2.3.4.5", "256.1.1.1", "::1::", "localhost"}) {
    SCOPED_TRACE(text);
    int32_t isIpv6 = 9;
    EXPECT_EQ(10022, ov_sock_pton(2, text, &addr));
    EXPECT_EQ(10022, ov_sock_pton(23, text, &addr));
    EXPECT_EQ(10022, ov_sock_store_ipaddr(text, &addr, &isIpv6));
    EXPECT_EQ(22, ov_sock_ip6_or_ip4(text, &isIpv6));
    EXPECT_EQ(9, isIpv6);
    EXPECT_EQ(0, memcmp(&before, &addr, sizeof addr));
  }
  EXPECT_EQ(10022, ov_sock_pton(2, "::1", &addr));
  EXPECT_EQ(10022, ov_sock_pton(23, "1.2.3.4", &addr));
  EXPECT_NE(0, ov_sock_pton(99, "1.2.3.4", &addr));
}

TEST_F(SocketTextTest, StoreTakesFamilyAndAddressOnly) {
  for (const Text& c : kTexts) {
    SCOPED_TRACE(c.text);
    ov_sock_addr addr = {};
    addr.port = 77;
    addr.scope_id = 5;
    int32_t isIpv6 = 9;
    EXPECT_EQ(0, ov_sock_store_ipaddr(c.text, &addr, &isIpv6));
    EXPECT_EQ(c.family, addr.family);
    EXPECT_EQ(c.family == 23, isIpv6);
    EXPECT_EQ(77, addr.port);
    EXPECT_EQ(5U, addr.scope_id);
    addr.scope_id = 0;
    EXPECT_EQ(c.text, textOf(addr));
    EXPECT_EQ(0, ov_sock_store_ipaddr(c.text, &addr, nullptr));
    isIpv6 = 9;
    EXPECT_EQ(0, ov_sock_ip6_or_ip4(c.text, &isIpv6));
    EXPECT_EQ(c.family == 23, isIpv6);
  }
  ov_sock_addr addr = {};
  addr.port = 77;
  EXPECT_EQ(0, ov_sock_store_ipaddr("1.2.3.4:8080", &addr, nullptr));
  EXPECT_EQ(77, addr.port);
  EXPECT_EQ(22, ov_sock_store_ipaddr("1.2.3.4", nullptr, nullptr));
  EXPECT_EQ(22, ov_sock_store_ipaddr(nullptr, &addr, nullptr));
  EXPECT_EQ(22, ov_sock_ip6_or_ip4("1.2.3.4", nullptr));
  int32_t isIpv6 = 9;
  EXPECT_EQ(22, ov_sock_ip6_or_ip4(nullptr, &isIpv6));
}

TEST_F(SocketTextTest, TextOfARecord) {
  char text[65] = "x";
  ov_sock_addr addr = ov::loopback(AF_INET);
  int32_t isIpv6 = 9;
  EXPECT_EQ(22, ov_sock_get_ipaddrstr(&addr, text, 64));
  EXPECT_EQ(22, ov_sock_copy_ipaddrstr(&addr, text, 64, &isIpv6));
  EXPECT_EQ(9, isIpv6);
  EXPECT_STREQ("x", text);
  EXPECT_EQ(0, ov_sock_get_ipaddrstr(&addr, text, 65));
  EXPECT_STREQ("127.0.0.1", text);
  EXPECT_EQ(0, ov_sock_copy_ipaddrstr(&addr, text, 65, &isIpv6));
  EXPECT_EQ(0, isIpv6);
  addr = ov::loopback(AF_INET6);
  EXPECT_EQ(0, ov_sock_copy_ipaddrstr(&addr, text, 65, &isIpv6));
  EXPECT_STREQ("::1", text);
  EXPECT_EQ(1, isIpv6);
  EXPECT_EQ(0, ov_sock_copy_ipaddrstr(&addr, text, 65, nullptr));
  for (const uint16_t family : std::initializer_list<uint16_t>{0, 1, 22}) {
    addr.family = family;
    EXPECT_EQ(22, ov_sock_get_ipaddrstr(&addr, text, 65));
    EXPECT_EQ(22, ov_sock_copy_ipaddrstr(&addr, text, 65, &isIpv6));
  }
  addr.family = 2;
  EXPECT_EQ(22, ov_sock_get_ipaddrstr(nullptr, text, 65));
  EXPECT_EQ(22, ov_sock_get_ipaddrstr(&addr, nullptr, 65));
}

TEST_F(SocketTextTest, FailureOfTheSystem) {
  ov_sock_addr addr = ov::loopback(AF_INET);
  char text[65] = "x";
  failure = 10014;
  EXPECT_EQ(10014, ov_sock_ntop(2, &addr, text, sizeof text));
  EXPECT_EQ(10014, ov_sock_get_ipaddrstr(&addr, text, sizeof text));
  EXPECT_STREQ("x", text);
}

}  // namespace
