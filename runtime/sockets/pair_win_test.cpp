#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

using ov::Messages;

// The step that fails, with which code and how many times.
std::string failing;
int failure = 0;
int failures = 0;

int open = 0;       // sockets
int listeners = 0;  // sockets of this kind in the attempt
std::vector<DWORD> sleeps;

bool fails(const char* step) {
  if (failing != step || failures == 0) return false;
  --failures;
  listeners = 0;
  WSASetLastError(failure);
  return true;
}

SOCKET noted(SOCKET socket) {
  if (socket != INVALID_SOCKET) ++open;
  return socket;
}

SOCKET WSAAPI makeSocket(int family, int type, int protocol) {
  EXPECT_EQ(AF_INET, family);
  EXPECT_EQ(SOCK_STREAM, type);
  EXPECT_EQ(IPPROTO_TCP, protocol);
  if (fails(listeners++ == 0 ? "listener socket" : "0 socket")) return INVALID_SOCKET;
  static const auto real = ov::socket_function<decltype(&makeSocket)>("socket");
  return noted(real(family, type, protocol));
}

int WSAAPI closeSocket(SOCKET socket) {
  --open;
  static const auto real = ov::socket_function<decltype(&closeSocket)>("closesocket");
  return real(socket);
}

int WSAAPI setOption(SOCKET socket, int level, int option, const char* value, int size) {
  EXPECT_EQ(SOL_SOCKET, level);
  EXPECT_EQ(SO_REUSEADDR, option);
  if (fails("reuseaddr")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&setOption)>("setsockopt");
  return real(socket, level, option, value, size);
}

int WSAAPI bindTo(SOCKET socket, const sockaddr* address, int size) {
  const auto* ipv4 = reinterpret_cast<const sockaddr_in*>(address);
  EXPECT_EQ(htonl(INADDR_LOOPBACK), ipv4->sin_addr.s_addr);
  EXPECT_EQ(0, ipv4->sin_port);
  if (fails("bind")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&bindTo)>("bind");
  return real(socket, address, size);
}

int WSAAPI socketName(SOCKET socket, sockaddr* address, int* size) {
  if (fails("getsockname")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&socketName)>("getsockname");
  return real(socket, address, size);
}

int WSAAPI listenAt(SOCKET socket, int backlog) {
  EXPECT_EQ(1, backlog);
  if (fails("listen")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&listenAt)>("listen");
  return real(socket, backlog);
}

int WSAAPI connectTo(SOCKET socket, const sockaddr* address, int size) {
  if (fails("connect")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&connectTo)>("connect");
  return real(socket, address, size);
}

int WSAAPI selectOne(int n, fd_set* read, fd_set* write, fd_set* except, PTIMEVAL limit) {
  EXPECT_EQ(5, limit->tv_sec);
  EXPECT_EQ(0, limit->tv_usec);
  if (failing == "time" && fails("time")) return 0;
  if (fails("select")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&selectOne)>("select");
  return real(n, read, write, except, limit);
}

SOCKET WSAAPI acceptOne(SOCKET listener, sockaddr* address, int* size) {
  if (fails("accept")) return INVALID_SOCKET;
  static const auto real = ov::socket_function<decltype(&acceptOne)>("accept");
  return noted(real(listener, address, size));
}

void WINAPI sleepFor(DWORD milliseconds) {
  sleeps.push_back(milliseconds);
}

}  // namespace

extern "C" {
decltype(&socket) __imp_socket = makeSocket;
decltype(&closesocket) __imp_closesocket = closeSocket;
decltype(&setsockopt) __imp_setsockopt = setOption;
decltype(&bind) __imp_bind = bindTo;
decltype(&getsockname) __imp_getsockname = socketName;
decltype(&listen) __imp_listen = listenAt;
decltype(&connect) __imp_connect = connectTo;
decltype(&select) __imp_select = selectOne;
decltype(&accept) __imp_accept = acceptOne;
decltype(&Sleep) __imp_Sleep = sleepFor;
}

namespace {

const char* const kSteps[] = {"listener socket", "reuseaddr", "bind",   "getsockname", "listen",
                              "0 socket",        "connect",   "select", "accept"};

class SocketPairSystemTest : public ov::SocketFixture {
 protected:
  SocketPairSystemTest() { fail("", 0, 0); }
  void fail(const std::string& step, int code, int times) {
    failing = step;
    failure = code;
    failures = times;
    open = 0;
    listeners = 0;
    sleeps.clear();
  }
  void expectPair() {
    EXPECT_EQ(2, open);  // the listener is closed
    char text[4];
    EXPECT_EQ(3, send(sockets_[0], "one", 3, 0));
    EXPECT_EQ(3, recv(sockets_[1], text, 3, 0));
    EXPECT_EQ("one", std::string(text, 3));
    EXPECT_EQ(3, send(sockets_[1], "two", 3, 0));
    EXPECT_EQ(3, recv(sockets_[0], text, 3, 0));
    EXPECT_EQ("two", std::string(text, 3));
    for (ov_sock& sock : sockets_) EXPECT_EQ(0, ov_sock_close(&sock));
    EXPECT_EQ(0, open);
  }

  ov_sock sockets_[2] = {8, 9};
};

TEST_F(SocketPairSystemTest, IsConnectedBothWays) {
  EXPECT_EQ(0, ov_sock_pair(sockets_));
  expectPair();
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_EQ(22, ov_sock_pair(nullptr));
}

TEST_F(SocketPairSystemTest, EachStepThatFailsIsReportedAndLeavesNothingOpen) {
  for (const char* step : kSteps) {
    SCOPED_TRACE(step);
    fail(step, 10055, 1);
    EXPECT_EQ(10055, ov_sock_pair(sockets_));
    EXPECT_EQ(ov::kClosedSocket, sockets_[0]);
    EXPECT_EQ(ov::kClosedSocket, sockets_[1]);
    EXPECT_EQ(0, open);
    EXPECT_TRUE(sleeps.empty());
    EXPECT_EQ(Messages{"ERR ov_sock_pair: " + std::string(step) + "() error 10055"}, log_.take());
  }
}

TEST_F(SocketPairSystemTest, NoConnectionInTime) {
  fail("time", 0, 1);
  EXPECT_EQ(10060, ov_sock_pair(sockets_));
  EXPECT_EQ(0, open);
  EXPECT_EQ(Messages{"ERR ov_sock_pair: select() error 10060"}, log_.take());
}

TEST_F(SocketPairSystemTest, CollisionInAnyStepIsTriedAgain) {
  for (const char* step : kSteps) {
    SCOPED_TRACE(step);
    fail(step, 10048, 1);
    EXPECT_EQ(0, ov_sock_pair(sockets_));
    expectPair();
    EXPECT_EQ(std::vector<DWORD>{0}, sleeps);
    EXPECT_EQ((Messages{"LOG ov_sock_pair: port collision in " + std::string(step) +
                            "().  Retrying (1 of 10)",
                        "LOG ov_sock_pair: success on reattempt 1"}),
              log_.take());
  }
}

TEST_F(SocketPairSystemTest, TenCollisionsAreSurvived) {
  fail("bind", 10048, 10);
  EXPECT_EQ(0, ov_sock_pair(sockets_));
  expectPair();
  EXPECT_EQ((std::vector<DWORD>{0, 20, 40, 60, 80, 100, 120, 140, 160, 180}), sleeps);
  EXPECT_EQ("LOG ov_sock_pair: success on reattempt 10", log_.take().back());
  fail("bind", 10048, 11);
  EXPECT_EQ(10048, ov_sock_pair(sockets_));
  EXPECT_EQ(0, open);
  EXPECT_EQ("ERR ov_sock_pair: bind() error 10048", log_.take().back());
}

}  // namespace
