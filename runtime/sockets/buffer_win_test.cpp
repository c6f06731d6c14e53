#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

using ov::Messages;

// Calls of the system, and what the next of them fail with.
int selects = 0;
int transfers = 0;
int selectFailure = 0;
int transferFailure = 0;
bool peerClosed = false;

bool fails(int* failure) {
  if (*failure == 0) return false;
  WSASetLastError(*failure);
  *failure = 0;
  return true;
}

int WSAAPI selectOne(int n, fd_set* read, fd_set* write, fd_set* except, PTIMEVAL limit) {
  ++selects;
  EXPECT_EQ(limit->tv_sec == 0 ? 10000 : 0, limit->tv_usec);  // 5 s while the pair is made
  if (fails(&selectFailure)) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&selectOne)>("select");
  return real(n, read, write, except, limit);
}

int WSAAPI receive(SOCKET socket, char* buffer, int length, int flags) {
  ++transfers;
  if (fails(&transferFailure)) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&receive)>("recv");
  return real(socket, buffer, length, flags);
}

int WSAAPI transmit(SOCKET socket, const char* buffer, int length, int flags) {
  ++transfers;
  if (peerClosed) return 0;
  if (fails(&transferFailure)) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&transmit)>("send");
  return real(socket, buffer, length, flags);
}

}  // namespace

extern "C" {
decltype(&select) __imp_select = selectOne;
decltype(&recv) __imp_recv = receive;
decltype(&send) __imp_send = transmit;
}

namespace {

class SocketBufferSystemTest : public ov::SocketFixture {
 protected:
  SocketBufferSystemTest() {
    EXPECT_EQ(0, ov_sock_pair(pair_));
    keep(pair_[0]);
    keep(pair_[1]);
    selects = 0;
    transfers = 0;
    selectFailure = 0;
    transferFailure = 0;
    peerClosed = false;
  }
  void write(const std::string& text) {
    EXPECT_EQ(static_cast<int>(text.size()),
              send(pair_[0], text.data(), static_cast<int>(text.size()), 0));
  }
  std::string taken() const { return {buffer_, count_}; }

  ov_sock pair_[2];
  char buffer_[32];
  uint32_t count_ = 77;
};

TEST_F(SocketBufferSystemTest, SilentPeerIsWaitedForThroughAllSlices) {
  EXPECT_EQ(0, ov_buf_read_tmout(&pair_[1], buffer_, 5, &count_, 1));
  EXPECT_EQ(0U, count_);
  EXPECT_EQ(100, selects);
  EXPECT_EQ(0, transfers);
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferSystemTest, ZeroLengthNeverTouchesTheSocket) {
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(0, ov_buf_read(&closed, nullptr, 0, &count_));
  EXPECT_EQ(0U, count_);
  count_ = 77;
  EXPECT_EQ(0, ov_buf_write(nullptr, nullptr, 0, &count_));
  EXPECT_EQ(0U, count_);
  EXPECT_EQ(0, ov_buf_read_tmout(&closed, nullptr, 0, &count_, 1));
  EXPECT_EQ(0, ov_buf_write_tmout(&closed, nullptr, 0, &count_, 1));
  EXPECT_EQ(0, selects + transfers);
}

TEST_F(SocketBufferSystemTest, BadArguments) {
  EXPECT_EQ(22, ov_buf_read_tmout(&pair_[1], buffer_, 0, &count_, -1));
  EXPECT_EQ(22, ov_buf_write_tmout(&pair_[1], buffer_, 5, &count_, -1));
  EXPECT_EQ(22, ov_buf_read(nullptr, buffer_, 5, &count_));
  EXPECT_EQ(22, ov_buf_read(&pair_[1], nullptr, 5, &count_));
  EXPECT_EQ(22, ov_buf_write(&pair_[1], buffer_, 5, nullptr));
  EXPECT_EQ(77U, count_);
}

TEST_F(SocketBufferSystemTest, WholeBufferInParts) {
  write("abc");
  std::thread later([this] { write("defgh"); });
  EXPECT_EQ(0, ov_buf_read(&pair_[1], buffer_, 6, &count_));
  later.join();
  EXPECT_EQ("abcdef", taken());
  EXPECT_EQ(0, selects);
  EXPECT_EQ(0, ov_buf_read_tmout(&pair_[1], buffer_, 2, &count_, 5));
  EXPECT_EQ("gh", taken());
  EXPECT_GE(selects, 1);
  const Messages lines = log_.take();
  ASSERT_EQ(2U, lines.size());
  EXPECT_EQ("DBG ov_buf_io: successful completion bytes 6", lines[0]);
  EXPECT_EQ("DBG ov_buf_io: successful completion bytes 2", lines[1]);
}

TEST_F(SocketBufferSystemTest, WritesMoreThanTheQueueHolds) {
  const std::string text(4000000, 'w');
  std::string read(text.size(), ' ');
  uint32_t taken = 0;
  std::thread reader(
      [&] { ov_buf_read(&pair_[1], read.data(), static_cast<uint32_t>(read.size()), &taken); });
  const auto length = static_cast<uint32_t>(text.size());
  EXPECT_EQ(0, ov_buf_write_tmout(&pair_[0], text.data(), length, &count_, 50));
  reader.join();
  EXPECT_EQ(length, count_);
  EXPECT_EQ(length, taken);
  EXPECT_TRUE(text == read);
}

TEST_F(SocketBufferSystemTest, PeerThatCloses) {
  write("abc");
  closesocket(pair_[0]);
  EXPECT_EQ(0, ov_buf_read_tmout(&pair_[1], buffer_, 10, &count_, 5));
  EXPECT_EQ("abc", taken());
  EXPECT_EQ(Messages{"DBG ov_buf_io: IO closed, pending read buf 7"}, log_.take());
}

TEST_F(SocketBufferSystemTest, PeerThatClosesUnderAWrite) {
  peerClosed = true;
  EXPECT_EQ(0, ov_buf_write(&pair_[1], "hello", 5, &count_));
  EXPECT_EQ(0U, count_);
  EXPECT_EQ(Messages{"DBG ov_buf_io: IO closed, pending write buf 5"}, log_.take());
}

TEST_F(SocketBufferSystemTest, NonBlockingSocketWithNothing) {
  EXPECT_EQ(0, ov_sock_set_nonblocking(&pair_[1]));
  EXPECT_EQ(10035, ov_buf_read(&pair_[1], buffer_, 5, &count_));
  EXPECT_EQ(0U, count_);
  write("abc");
  while (recv(pair_[1], buffer_, 1, MSG_PEEK) != 1) std::this_thread::yield();
  EXPECT_EQ(0, ov_buf_read(&pair_[1], buffer_, 5, &count_));
  EXPECT_EQ("abc", taken());
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferSystemTest, FailingWait) {
  selectFailure = 10022;
  EXPECT_EQ(10022, ov_buf_read_tmout(&pair_[1], buffer_, 5, &count_, 1));
  EXPECT_EQ(0U, count_);
  selectFailure = 10050;
  EXPECT_EQ(10050, ov_buf_write_tmout(&pair_[1], buffer_, 5, &count_, 1));
  EXPECT_EQ(0, transfers);
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketBufferSystemTest, FailingTransfer) {
  transferFailure = 10054;
  EXPECT_EQ(10054, ov_buf_write(&pair_[1], buffer_, 5, &count_));
  ov_sock closed = ov::kClosedSocket;
  EXPECT_EQ(10038, ov_buf_read(&closed, buffer_, 5, &count_));
  EXPECT_EQ(
      (Messages{"ERR ov_buf_io: IO error (errno=10054)", "ERR ov_buf_io: IO error (errno=10038)"}),
      log_.take());
}

TEST_F(SocketBufferSystemTest, InterruptedTransferIsRepeated) {
  write("abc");
  transferFailure = 4;
  EXPECT_EQ(0, ov_buf_read_tmout(&pair_[1], buffer_, 3, &count_, 5));
  EXPECT_EQ("abc", taken());
  EXPECT_GE(transfers, 3);  // one of them is the test's own
}

}  // namespace
