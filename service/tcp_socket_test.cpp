// The socket classes against real sockets on the loopback.
#include "service/tcp_socket.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/test_socket.h"

namespace Vantrel::Web {
namespace {

using TestSupport::LogRecorder;
using TestSupport::Script;
using TestSupport::ScriptedServer;
using TestSupport::TestSocket;

// Brings the socket layer up for cases that use no server.
class TcpSocketTest : public testing::Test {
 protected:
  const TestSocket listener_ = TestSocket::listenLoopback(0);
  LogRecorder log_;
};

TEST_F(TcpSocketTest, SendsAndReceives) {
  TcpSocket socket;
  ASSERT_EQ(socket.connect("127.0.0.1", listener_.localPort()), 0);
  const TestSocket peer = listener_.accept();
  EXPECT_EQ(socket.send("abc", 3), 3);
  char buffer[8] = "";
  EXPECT_EQ(peer.receive(buffer, sizeof buffer), 3);
  ASSERT_TRUE(peer.sendAll("xy"));
  EXPECT_EQ(socket.recv(buffer, sizeof buffer), 2);
  EXPECT_EQ(std::string(buffer, 2), "xy");
  EXPECT_EQ(log_.text(), "");
}

TEST_F(TcpSocketTest, PeersCloseIsZero) {
  TcpSocket socket;
  ASSERT_EQ(socket.connect("127.0.0.1", listener_.localPort()), 0);
  listener_.accept().close();
  char buffer[8];
  EXPECT_EQ(socket.recv(buffer, sizeof buffer), 0);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(TcpSocketTest, ResetWhileReceivingIsAFailure) {
  TcpSocket socket;
  ASSERT_EQ(socket.connect("127.0.0.1", listener_.localPort()), 0);
  TestSocket peer = listener_.accept();
  // The reset must come while the call waits; one that is there before may read as an orderly end.
  std::thread reset([&peer] {
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    peer.reset();
  });
  char buffer[8];
  EXPECT_EQ(socket.recv(buffer, sizeof buffer), -1);
  reset.join();
  EXPECT_EQ(log_.lines("ERR").size(), 1U);
  EXPECT_EQ(log_.countContaining("Socket::recv() ["), 1U);
  EXPECT_EQ(log_.countContaining("] - recv failed ("), 1U);
}

TEST_F(TcpSocketTest, DottedAddressResolvesToItself) {
  EXPECT_EQ(IpAddress::resolve("127.0.0.1"), "127.0.0.1");
  EXPECT_EQ(IpAddress::resolve("10.1.2.3"), "10.1.2.3");
  EXPECT_EQ(log_.text(), "");
}

TEST_F(TcpSocketTest, NameResolves) {
  EXPECT_EQ(IpAddress::resolve("localhost").rfind("127.", 0), 0U);
  TcpSocket socket;
  EXPECT_EQ(socket.connect("localhost", listener_.localPort()), 0);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(TcpSocketTest, NameThatDoesNotResolveIsReported) {
  EXPECT_EQ(IpAddress::resolve("name with blanks"), "");
  EXPECT_EQ(log_.text(), "ERR IpAddress::resolve() Unable to resolve IP address\n");
}

TEST_F(TcpSocketTest, RefusedConnectionGivesTheCodeAndOneLine) {
  const uint16_t port = TestSupport::unusedPort();
  TcpSocket socket;
  const int32_t code = socket.connect("127.0.0.1", port);
  EXPECT_NE(code, 0);
  ASSERT_EQ(log_.lines().size(), 1U) << log_.text();
  const std::string line = log_.lines()[0];
  EXPECT_EQ(line.rfind("ERR TcpSocket::connect() Connection failed for socket ", 0), 0U) << line;
  const std::string end =
      " error: (" + std::to_string(code) + ") Address: 127.0.0.1 IP: 127.0.0.1 inet_addr: 16777343";
  EXPECT_EQ(line.substr(line.size() - end.size()), end);
}

TEST_F(TcpSocketTest, ClosedSocketFailsSilently) {
  TcpSocket socket;
  char buffer[1] = "";
  EXPECT_EQ(socket.recv(buffer, 1), -1);
  EXPECT_EQ(socket.send(buffer, 1), -1);
  socket.close();
  ASSERT_EQ(socket.connect("127.0.0.1", listener_.localPort()), 0);
  socket.close();
  socket.close();
  EXPECT_EQ(socket.recv(buffer, 1), -1);
  EXPECT_EQ(socket.send(buffer, 1), -1);
  EXPECT_EQ(log_.text(), "");
}

// The queue of a server that accepts nobody is full after a connection or two; one more waits.
TEST_F(TcpSocketTest, ConnectionThatNobodyAcceptsIsGivenUpWhenBroken) {
  using namespace std::chrono_literals;
  const TestSocket busy = TestSocket::listenLoopback(0, 0);
  for (int i = 0; i < 10; ++i) {
    SocketBreaker breaker;
    TcpSocket socket;
    std::future<int32_t> connecting = std::async(std::launch::async, [&] {
      return socket.connect("127.0.0.1", busy.localPort(), {.breaker = &breaker});
    });
    if (connecting.wait_for(500ms) == std::future_status::ready) {
      ASSERT_EQ(connecting.get(), 0);
      continue;  // its end is in the queue still
    }
    breaker.breakNow();
    EXPECT_NE(connecting.get(), 0);
    EXPECT_EQ(log_.text(), "");
    return;
  }
  FAIL() << "no connection waited";
}

TEST_F(TcpSocketTest, ConnectionThatNobodyAcceptsIsTriedBriefly) {
  const TestSocket busy = TestSocket::listenLoopback(0, 0);
  std::array<TcpSocket, 10> sockets;
  int32_t code = 0;
  for (TcpSocket& socket : sockets) {
    code = socket.connect("127.0.0.1", busy.localPort(), {.briefly = true});
    if (code != 0) break;  // which is the test: it has come to an end
  }
  EXPECT_NE(code, 0);
  EXPECT_EQ(log_.lines("ERR").size(), 1U);
}

TEST_F(TcpSocketTest, DestructorClosesTheConnection) {
  {
    TcpSocket socket;
    ASSERT_EQ(socket.connect("127.0.0.1", listener_.localPort()), 0);
  }
  const TestSocket peer = listener_.accept();
  char buffer[1];
  EXPECT_EQ(peer.receive(buffer, 1), 0);
}

}  // namespace
}  // namespace Vantrel::Web
