// The plain calls on real sockets, also with arrays of buffers, and the functions without a
// platform call.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>

#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

class SocketCallsTest : public ov::SocketFixture {
 protected:
  ov_sock sock_ = 4;
};

TEST_F(SocketCallsTest, FunctionsWithoutCounterpartCountAsFailedAssertions) {
  ASSERT_EQ(20U, std::size(ov::kSocketNothing));
  const int32_t before = g_ov_asserts_skipped;
  int32_t value = 3;
  for (const ov::SocketCall call : ov::kSocketNothing) EXPECT_EQ(0, call(&sock_, &value));
  EXPECT_EQ(before, g_ov_asserts_skipped);
  g_ov_asserts_active = 0;
  for (const ov::SocketCall call : ov::kSocketNothing) EXPECT_EQ(0, call(&sock_, &value));
  g_ov_asserts_active = 1;
  EXPECT_EQ(before + 20, g_ov_asserts_skipped);
  EXPECT_EQ(3, value);
}

TEST_F(SocketCallsTest, PlainCallsOnARealSocket) {
  ov_sock udp = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
  ASSERT_NE(~ov_sock{0}, udp);
  sockaddr_in self = {};
  self.sin_family = AF_INET;
  self.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof self;
  ASSERT_EQ(0, bind(udp, reinterpret_cast<sockaddr*>(&self), size));
  ASSERT_EQ(0, getsockname(udp, reinterpret_cast<sockaddr*>(&self), &size));
  ASSERT_EQ(3, sendto(udp, "abc", 3, 0, reinterpret_cast<sockaddr*>(&self), size));
  char out[4];
  ASSERT_EQ(3, recv(udp, out, sizeof out, 0));
  EXPECT_EQ(0, ov_sock_set_nonblocking(&udp));
  EXPECT_EQ(SOCKET_ERROR, recv(udp, out, sizeof out, 0));
  EXPECT_EQ(WSAEWOULDBLOCK, WSAGetLastError());
  int32_t value = 1;
  EXPECT_EQ(0, ov_sock_get_nonblocking(&udp, &value));
  EXPECT_EQ(0, value);  // the call's result, not the mode
  EXPECT_EQ(SOCKET_ERROR, recv(udp, out, sizeof out, 0));
  EXPECT_EQ(0, ov_sock_set_blocking(&udp));
  EXPECT_EQ(0, ov_sock_close(&udp));
  value = 1;
  EXPECT_EQ(10038, ov_sock_get_nonblocking(&udp, &value));
  EXPECT_EQ(-1, value);
}

TEST_F(SocketCallsTest, ShutdownOfAnUnconnectedSocketIsSuccess) {
  ov_sock tcp = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  EXPECT_EQ(0, ov_sock_shutdown(&tcp, 0));
  EXPECT_EQ(0, ov_sock_shutdown_rw(&tcp));
  EXPECT_EQ(0, ov_sock_close(&tcp));
  EXPECT_EQ(10038, ov_sock_shutdown_rw(&tcp));
  EXPECT_EQ(22, ov_sock_shutdown(nullptr, 0));
}

TEST_F(SocketCallsTest, BytesThatWait) {
  ov_sock listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in self = {};
  self.sin_family = AF_INET;
  self.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof self;
  ASSERT_EQ(0, bind(listener, reinterpret_cast<sockaddr*>(&self), size));
  ASSERT_EQ(0, getsockname(listener, reinterpret_cast<sockaddr*>(&self), &size));
  ASSERT_EQ(0, listen(listener, 1));
  ov_sock client = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  ASSERT_EQ(0, connect(client, reinterpret_cast<sockaddr*>(&self), size));
  ov_sock server = accept(listener, nullptr, nullptr);
  ASSERT_EQ(5, send(client, "12345", 5, 0));
  char first = 0;
  ASSERT_EQ(1, recv(server, &first, 1, MSG_PEEK));  // until it is there
  int32_t waiting = 0;
  EXPECT_EQ(0, ov_sock_get_tcp_inq_size(&server, &waiting));
  EXPECT_EQ(5, waiting);
  for (ov_sock* open : {&client, &server, &listener}) EXPECT_EQ(0, ov_sock_close(open));
  EXPECT_EQ(10038, ov_sock_get_tcp_inq_size(&server, &waiting));
  EXPECT_EQ(22, ov_sock_get_tcp_inq_size(nullptr, &waiting));
  EXPECT_EQ(22, ov_sock_get_tcp_inq_size(&server, nullptr));
  uint32_t argument = 0;
  EXPECT_EQ(22, ov_sock_ioctl(nullptr, 0, &argument));
  EXPECT_EQ(22, ov_sock_ioctl(&server, 0, nullptr));
  EXPECT_EQ(22, ov_sock_get_nonblocking(&server, nullptr));
}

TEST_F(SocketCallsTest, FixedAnswers) {
  int32_t level = 0;
  EXPECT_EQ(0, ov_sock_timer_level(&sock_, &level));
  EXPECT_EQ(3, level);
  EXPECT_EQ(22, ov_sock_timer_level(&sock_, nullptr));
  EXPECT_EQ(0, ov_sock_is_nonblocking_safe());
}

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
