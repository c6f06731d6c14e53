#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

class SocketVectorTest : public ov::SocketFixture {
 protected:
  // The first `bytes` of the three buffers.
  std::string taken() const {
    return (std::string(first, 2) + std::string(second, 3) + std::string(third, 4))
        .substr(0, bytes);
  }

  char first[2] = {}, second[3] = {}, third[4] = {};
  WSABUF buffers[3] = {{2, first}, {3, second}, {4, third}};
  uint32_t bytes = 77;
};

TEST_F(SocketVectorTest, GatherPeekAndScatter) {
  ov_sock pair[2];
  ASSERT_EQ(0, ov_sock_pair(pair));
  keep(pair[0]);
  keep(pair[1]);
  char one[] = "abc";
  char two[] = "defg";
  WSABUF parts[] = {{3, one}, {0, nullptr}, {4, two}};
  EXPECT_EQ(0, ov_sock_writev(&pair[0], parts, 3, &bytes));
  EXPECT_EQ(7U, bytes);
  int32_t waiting = 0;
  while (waiting < 7) ASSERT_EQ(0, ov_sock_get_tcp_inq_size(&pair[1], &waiting));
  EXPECT_EQ(0, ov_sock_peekv(&pair[1], buffers, 2, &bytes));
  EXPECT_EQ("abcde", taken());
  EXPECT_EQ(0, ov_sock_readv(&pair[1], buffers, 3, &bytes));
  EXPECT_EQ("abcdefg", taken());
  closesocket(pair[0]);
  EXPECT_EQ(0, ov_sock_readv(&pair[1], buffers, 3, &bytes));
  EXPECT_EQ(0U, bytes);
}

TEST_F(SocketVectorTest, MessageThatIsTooLongMayBePeekedAt) {
  ov_sock receiver = make_receiver(AF_INET);
  const ov_sock sender = make_sender(receiver);
  ASSERT_EQ(12, send(sender, "abcdefghijkl", 12, 0));
  EXPECT_EQ(0, ov_sock_peekv(&receiver, buffers, 3, &bytes));
  EXPECT_EQ(9U, bytes);
  EXPECT_EQ("abcdefghi", taken());
  EXPECT_EQ(10040, ov_sock_readv(&receiver, buffers, 3, &bytes));
  EXPECT_EQ(0U, bytes);
  ASSERT_EQ(2, send(sender, "xy", 2, 0));
  EXPECT_EQ(0, ov_sock_peekv(&receiver, buffers, 3, &bytes));
  EXPECT_EQ("xy", taken());
}

TEST_F(SocketVectorTest, Failures) {
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(10038, ov_sock_readv(&closed, buffers, 1, &bytes));
  EXPECT_EQ(0U, bytes);
  EXPECT_EQ(10038, ov_sock_peekv(&closed, buffers, 1, &bytes));
  EXPECT_EQ(10038, ov_sock_writev(&closed, buffers, 1, &bytes));
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  for (const auto call : {ov_sock_readv, ov_sock_peekv, ov_sock_writev}) {
    EXPECT_EQ(22, call(nullptr, buffers, 1, &bytes));
    EXPECT_EQ(22, call(&sock, nullptr, 1, &bytes));
    EXPECT_EQ(22, call(&sock, buffers, -1, &bytes));
    EXPECT_EQ(22, call(&sock, buffers, 1, nullptr));
  }
}

}  // namespace
