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
    return (std::string(first_, 2) + std::string(second_, 3) + std::string(third_, 4))
        .substr(0, bytes_);
  }

  char first_[2] = {}, second_[3] = {}, third_[4] = {};
  WSABUF buffers_[3] = {{2, first_}, {3, second_}, {4, third_}};
  uint32_t bytes_ = 77;
};

TEST_F(SocketVectorTest, GatherPeekAndScatter) {
  ov_sock pair[2];
  ASSERT_EQ(0, ov_sock_pair(pair));
  keep(pair[0]);
  keep(pair[1]);
  char one[] = "abc";
  char two[] = "defg";
  WSABUF parts[] = {{3, one}, {0, nullptr}, {4, two}};
  EXPECT_EQ(0, ov_sock_writev(&pair[0], parts, 3, &bytes_));
  EXPECT_EQ(7U, bytes_);
  int32_t waiting = 0;
  while (waiting < 7) ASSERT_EQ(0, ov_sock_get_tcp_inq_size(&pair[1], &waiting));
  EXPECT_EQ(0, ov_sock_peekv(&pair[1], buffers_, 2, &bytes_));
  EXPECT_EQ("abcde", taken());
  EXPECT_EQ(0, ov_sock_readv(&pair[1], buffers_, 3, &bytes_));
  EXPECT_EQ("abcdefg", taken());
  closesocket(pair[0]);
  EXPECT_EQ(0, ov_sock_readv(&pair[1], buffers_, 3, &bytes_));
  EXPECT_EQ(0U, bytes_);
}

TEST_F(SocketVectorTest, MessageThatIsTooLongMayBePeekedAt) {
  ov_sock receiver = makeReceiver(AF_INET);
  const ov_sock sender = makeSender(receiver);
  ASSERT_EQ(12, send(sender, "abcdefghijkl", 12, 0));
  EXPECT_EQ(0, ov_sock_peekv(&receiver, buffers_, 3, &bytes_));
  EXPECT_EQ(9U, bytes_);
  EXPECT_EQ("abcdefghi", taken());
  EXPECT_EQ(10040, ov_sock_readv(&receiver, buffers_, 3, &bytes_));
  EXPECT_EQ(0U, bytes_);
  ASSERT_EQ(2, send(sender, "xy", 2, 0));
  EXPECT_EQ(0, ov_sock_peekv(&receiver, buffers_, 3, &bytes_));
  EXPECT_EQ("xy", taken());
}

TEST_F(SocketVectorTest, Failures) {
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(10038, ov_sock_readv(&closed, buffers_, 1, &bytes_));
  EXPECT_EQ(0U, bytes_);
  EXPECT_EQ(10038, ov_sock_peekv(&closed, buffers_, 1, &bytes_));
  EXPECT_EQ(10038, ov_sock_writev(&closed, buffers_, 1, &bytes_));
  ov_sock sock = make(AF_INET, SOCK_STREAM);
  for (const auto call : {ov_sock_readv, ov_sock_peekv, ov_sock_writev}) {
    EXPECT_EQ(22, call(nullptr, buffers_, 1, &bytes_));
    EXPECT_EQ(22, call(&sock, nullptr, 1, &bytes_));
    EXPECT_EQ(22, call(&sock, buffers_, -1, &bytes_));
    EXPECT_EQ(22, call(&sock, buffers_, 1, nullptr));
  }
}

}  // namespace
