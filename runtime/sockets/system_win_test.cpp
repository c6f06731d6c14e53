// What connects, resolves and moves data, on the system's own calls and the public header alone.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

class SocketSystemTest : public ov::SocketFixture {
 protected:
  // The address in the text, with that port in network order.
  static ov_sock_addr address(const char* text_, uint16_t port = 0) {
    ov_sock_addr addr = {};
    int32_t isIpv6 = 0;
    EXPECT_EQ(0, ov_sock_store_ipaddr(text_, &addr, &isIpv6));
    addr.port = port;
    return addr;
  }

  char text_[65] = {};
  uint32_t count_ = 77;
};

TEST_F(SocketSystemTest, TextsOfAddresses) {
  ov_sock_addr addr = {};
  int32_t isIpv6 = 9;
  EXPECT_EQ(0, ov_sock_pton(23, "2001:db8::1", &addr));
  EXPECT_EQ(0, ov_sock_ntop(23, &addr, text_, sizeof text_));
  EXPECT_STREQ("2001:db8::1", text_);
  EXPECT_EQ(0, ov_sock_ip6_or_ip4("10.0.0.1", &isIpv6));
  EXPECT_EQ(0, isIpv6);
  addr = address("10.0.0.1");
  EXPECT_EQ(0, ov_sock_get_ipaddrstr(&addr, text_, sizeof text_));
  EXPECT_STREQ("10.0.0.1", text_);
  addr = address("::7");
  EXPECT_EQ(0, ov_sock_copy_ipaddrstr(&addr, text_, sizeof text_, &isIpv6));
  EXPECT_STREQ("::7", text_);
  EXPECT_EQ(1, isIpv6);
}

TEST_F(SocketSystemTest, ThisMachine) {
  ov_sock_addr addr = {};
  EXPECT_EQ(0, ov_sock_resolve_addr("127.0.0.1:8080", &addr));
  EXPECT_EQ(36895, ov_sock_get_port(&addr));
  int32_t answer = 9;
  EXPECT_EQ(0, ov_sock_is_local_interface_address(&addr, &answer));
  EXPECT_EQ(1, answer);
  EXPECT_EQ(0, ov_sock_is_localhost("192.0.2.1", &answer));  // of a network for examples
  EXPECT_EQ(0, answer);
  const ov_sock_addr other = address("192.0.2.1");
  EXPECT_EQ(0, ov_sock_is_local_address(&other, &answer));
  EXPECT_EQ(0, answer);
  EXPECT_EQ(22, ov_sock_get_mac_addr(nullptr, &other, text_, sizeof text_));
  const ov_rc result = ov_sock_get_1host_ipaddr(&addr);
  EXPECT_TRUE(result == 0 || result == 2) << result;  // 2 with the loopback address only
  EXPECT_EQ(result != 0, ov_sock_is_loopback_ipaddr(&addr));
}

TEST_F(SocketSystemTest, ConnectionFromServerToClients) {
  ov_sock server = ov::kClosedSocket;
  ASSERT_EQ(0, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, &server));
  keep(server);
  const std::string port = std::to_string(ntohs(ov::own_address(server).port));
  for (const char* local : {static_cast<const char*>(nullptr), "127.0.0.9"}) {
    ov_sock client = ov::kClosedSocket;
    ASSERT_EQ(0, local == nullptr ? ov_sock_create_client("127.0.0.1", port.c_str(), AF_INET,
                                                          SOCK_STREAM, &client)
                                  : ov_sock_create_client2(local, "127.0.0.1", port.c_str(),
                                                           AF_INET, SOCK_STREAM, &client));
    keep(client);
    ov_sock accepted = keep(accept(server, nullptr, nullptr));
    EXPECT_EQ(0, ov_buf_write(&client, "hello", 5, &count_));
    EXPECT_EQ(0, ov_buf_read(&accepted, text_, 5, &count_));
    EXPECT_EQ("hello", std::string(text_, count_));
  }
}

TEST_F(SocketSystemTest, BuffersThroughAPair) {
  ov_sock pair[2];
  ASSERT_EQ(0, ov_sock_pair(pair));
  keep(pair[0]);
  keep(pair[1]);
  EXPECT_EQ(0, ov_buf_write_tmout(&pair[1], "hello", 5, &count_, 10));
  EXPECT_EQ(5U, count_);
  EXPECT_EQ(0, ov_buf_read_tmout(&pair[0], text_, 5, &count_, 10));
  EXPECT_EQ("hello", std::string(text_, count_));
  EXPECT_EQ(0, ov_buf_read_tmout(&pair[0], text_, 5, &count_, 1));  // nothing comes
  EXPECT_EQ(0U, count_);
}

TEST_F(SocketSystemTest, DatagramWithItsTimeAndItsDestination) {
  ov_sock receiver = makeReceiver(AF_INET);
  ov_sock sender = makeSender(receiver);
  ov_timeval time = {-1, -1};
  EXPECT_EQ(3, ov_sock_send_udp_ts(&sender, "one", 3, &time, 3));
  EXPECT_EQ(3, ov_sock_recv_udp_ts(&receiver, text_, sizeof text_, &time, 3));
  EXPECT_NE(-1, time.sec);
  EXPECT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  EXPECT_EQ(3, ov_sock_send_udp_ts(&sender, "two", 3, &time, 3));
  ov_sock_addr from = {};
  ov_sock_addr dst = {};
  EXPECT_EQ(0, ov_sock_recvmsg_dstaddr(&receiver, text_, sizeof text_, &count_, &from, &dst, 0));
  EXPECT_EQ("two", std::string(text_, count_));
  EXPECT_EQ(1, ov_sock_is_loopback_ipaddr(&dst));
  EXPECT_EQ(ov::own_address(sender).port, from.port);
}

}  // namespace
