#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_sockets.h"
#include "runtime/ov_time.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

using ov::Messages;

bool shortSend = false;

int WSAAPI transmit(SOCKET socket, const char* buffer, int length, int flags) {
  static const auto real = ov::socket_function<decltype(&transmit)>("send");
  return real(socket, buffer, shortSend ? length - 1 : length, flags);
}

}  // namespace

extern "C" {
decltype(&send) __imp_send = transmit;
}

namespace {

const char kShortSend[] = "DBG ov_send_udp_pkt_ts(sock_snd_dat,snd_buf), send";

class SocketDatagramTest : public ov::SocketFixture {
 protected:
  SocketDatagramTest() : receiver_(makeReceiver(AF_INET)), sender_(makeSender(receiver_)) {
    shortSend = false;
    EXPECT_EQ(0, ov_time_init());
  }
  int32_t receive(int32_t level) {
    return ov_sock_recv_udp_ts(&receiver_, buffer_, sizeof buffer_, &time_, level);
  }

  ov_sock receiver_, sender_;
  char buffer_[16] = {};
  ov_timeval time_ = {-1, -1};
};

TEST_F(SocketDatagramTest, ReceivedWithItsTime) {
  for (const int32_t level : {2, 3}) {
    ov_timeval before;
    ov_timeval after;
    ASSERT_EQ(0, ov_time_gettimeofday(&before));
    EXPECT_EQ(5, ov_sock_send_udp_ts(&sender_, "hello", 5, nullptr, level));
    EXPECT_EQ(5, receive(level));
    EXPECT_EQ("hello", std::string(buffer_, 5));
    ASSERT_EQ(0, ov_time_gettimeofday(&after));
    EXPECT_GE(ov_time_get_usec_diff(&time_, &before), 0);
    EXPECT_GE(ov_time_get_usec_diff(&after, &time_), 0);
  }
  EXPECT_EQ(0, ov_sock_send_udp_ts(&sender_, "", 0, nullptr, 3));
  EXPECT_EQ(0, ov_sock_recv_udp_ts(&receiver_, buffer_, sizeof buffer_, nullptr, 3));
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketDatagramTest, LowestLevelReceivesNothing) {
  EXPECT_EQ(2, ov_sock_send_udp_ts(&sender_, "hi", 2, &time_, 1));
  EXPECT_EQ(Messages{"DBG Warning: pre-specified timer precision level incorrect"}, log_.take());
  EXPECT_EQ(0, receive(1));
  EXPECT_EQ(-1, time_.sec);
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_EQ(2, receive(2));  // it is still there
}

TEST_F(SocketDatagramTest, OtherLevels) {
  for (const int32_t level : {0, 4, -1}) {
    EXPECT_EQ(-1, receive(level));
    EXPECT_EQ(Messages{"DBG invalid timer precision level"}, log_.take());
    EXPECT_EQ(1, ov_sock_send_udp_ts(&sender_, "x", 1, nullptr, level));
  }
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketDatagramTest, FailedReceive) {
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(-1, ov_sock_recv_udp_ts(&closed, buffer_, 16, &time_, 2));
  EXPECT_EQ(Messages{"DBG recv(udp_fd) bytes=-1 size=16 error=10038"}, log_.take());
  EXPECT_EQ(-1, time_.sec);
  EXPECT_EQ(-1, ov_sock_recv_udp_ts(nullptr, buffer_, 16, &time_, 2));
  EXPECT_EQ(-1, ov_sock_recv_udp_ts(&receiver_, nullptr, 16, &time_, 2));
  EXPECT_EQ(-1, ov_sock_recv_udp_ts(&receiver_, buffer_, -1, &time_, 2));
  EXPECT_EQ((Messages{"DBG recv(udp_fd) bytes=-1 size=16 error=22",
                      "DBG recv(udp_fd) bytes=-1 size=16 error=22",
                      "DBG recv(udp_fd) bytes=-1 size=-1 error=22"}),
            log_.take());
}

TEST_F(SocketDatagramTest, ShortOrFailedSend) {
  shortSend = true;
  EXPECT_EQ(-1, ov_sock_send_udp_ts(&sender_, "hello", 5, &time_, 3));
  shortSend = false;
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(-1, ov_sock_send_udp_ts(&closed, "hello", 5, &time_, 3));
  EXPECT_EQ(-1, ov_sock_send_udp_ts(nullptr, "hello", 5, &time_, 3));
  EXPECT_EQ(-1, ov_sock_send_udp_ts(&sender_, nullptr, 5, &time_, 3));
  EXPECT_EQ(-1, ov_sock_send_udp_ts(&sender_, "hello", -1, &time_, 3));
  EXPECT_EQ(Messages(5, kShortSend), log_.take());
}

}  // namespace
