// The socket classes and the exchange above them over a platform whose calls a case lets fail.
#include "service/tcp_socket.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "service/http_request.h"
#include "service/launch.h"
#include "service/socket_platform.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/service_files.h"

namespace Vantrel::Web {

namespace {

// What the platform does, and what was asked of it.
struct Platform {
  uint64_t created = 77;
  SocketPlatform::Resolution resolution = SocketPlatform::Resolution::kFound;
  std::string dotted = "1.2.3.4";
  int goodFromResolve = 0;  // earlier look-ups give an empty text
  int resolves = 0;
  bool connects = true;
  uint32_t connectedAddress = 0;
  std::vector<bool> quickRefusals;  // of each attempt
  std::vector<bool> givenUp;        // the same, at its start
  std::vector<uint64_t> shutDowns;
  uint16_t connectedPort = 0;
  int32_t code = 0;
  int32_t count = 0;
  int32_t sendLimit = 0;  // bytes taken by one call, if not 0
  bool memoryEnds = false;
  std::string reply;
  std::string sent;
  int sends = 0;
  int32_t closeCode = 0;
  std::vector<uint64_t> closed;
};

Platform platform;

}  // namespace

namespace SocketPlatform {

uint64_t createTcp() {
  return platform.created;
}

bool connectTcp(uint64_t, uint32_t address, uint16_t port, const Connecting& how, int32_t* code) {
  platform.quickRefusals.push_back(how.quickRefusal);
  platform.givenUp.push_back(how.giveUp != nullptr && *how.giveUp);
  platform.connectedAddress = address;
  platform.connectedPort = port;
  *code = platform.code;
  return platform.connects;
}

int32_t receive(uint64_t, char* buffer, int32_t size, int32_t* code) {
  if (platform.memoryEnds) throw std::bad_alloc();
  *code = platform.code;
  if (platform.reply.empty()) return platform.count;
  const size_t count = std::min(platform.reply.size(), static_cast<size_t>(size));
  platform.reply.copy(buffer, count);
  platform.reply.erase(0, count);
  return static_cast<int32_t>(count);
}

int32_t transmit(uint64_t, const char* buffer, int32_t size, int32_t* code) {
  *code = platform.code;
  ++platform.sends;
  if (platform.sendLimit == 0) return platform.count;
  const int32_t count = std::min(platform.sendLimit, size);
  platform.sent.append(buffer, static_cast<size_t>(count));
  return count;
}

void shutDown(uint64_t handle) {
  platform.shutDowns.push_back(handle);
}

int32_t closeSocket(uint64_t* handle) {
  platform.closed.push_back(*handle);
  return platform.closeCode;
}

Resolution resolveIpv4(const std::string&, std::string* dotted) {
  if (++platform.resolves < platform.goodFromResolve) return Resolution::kFailed;
  if (platform.resolution == Resolution::kFound) *dotted = platform.dotted;
  return platform.resolution;
}

uint32_t parseIpv4(const std::string& dotted) {
  return dotted == "1.2.3.4" ? 0x04030201U : kInvalidAddress;
}

}  // namespace SocketPlatform

namespace {

using TestSupport::LogRecorder;

constexpr char kUnresolved[] = "TcpSocket::connect() Couldn't resolve address for: host%s";
constexpr char kLookUpFailed[] = "IpAddress::resolve() Unable to resolve IP address";
constexpr char kNoIpv4[] = "IpAddress::resolve() Unable to resolve IP address (AF_INET not found)";

std::string handleText(uint64_t handle) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", reinterpret_cast<void*>(static_cast<uintptr_t>(handle)));
  return text;
}

class TcpSocketFailureTest : public testing::Test {
 protected:
  TcpSocketFailureTest() { platform = Platform(); }

  LogRecorder log_;
};

TEST_F(TcpSocketFailureTest, NoSocketIsOne) {
  platform.created = SocketPlatform::kClosedSocket;
  TcpSocket socket;
  EXPECT_EQ(socket.connect("host", 80), 1);
  EXPECT_EQ(log_.text(), "ERR TcpSocket::create() Failed to create TCP socket\n");
  EXPECT_EQ(platform.resolves, 0);
}

TEST_F(TcpSocketFailureTest, ResolvingHostIsLookedUpTwiceAndConnectedOnce) {
  TcpSocket socket;
  EXPECT_EQ(socket.connect("host", 8080), 0);
  EXPECT_EQ(platform.resolves, 2);
  EXPECT_EQ(platform.connectedAddress, 0x04030201U);
  EXPECT_EQ(platform.connectedPort, 8080);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(TcpSocketFailureTest, AnAddressIsNotLookedUp) {
  TcpSocket socket;
  EXPECT_EQ(socket.connect("1.2.3.4", 80), 0);
  EXPECT_EQ(platform.resolves, 0);
  EXPECT_EQ(platform.connectedAddress, 0x04030201U);
}

TEST_F(TcpSocketFailureTest, WhatIsNoPlainAddressIsLookedUp) {
  for (const char* const host : {"1.2.3", "1.2.3.04", "1.2.3.256", "1.2.3.4.", ".1.2.3",
                                 "1.2.3.1000", "1..2.3", "1.2.3.4 ", "0x1.2.3.4", ""}) {
    platform.resolves = 0;
    TcpSocket socket;
    EXPECT_EQ(socket.connect(host, 80), 0) << host;
    EXPECT_EQ(platform.resolves, 2) << host;
  }
}

TEST_F(TcpSocketFailureTest, OnlyAConnectionToANewClientBelievesARefusalAtOnce) {
  TcpSocket plain;
  EXPECT_EQ(plain.connect("1.2.3.4", 80), 0);
  ConnectionPurpose purpose;
  purpose.awaitsNewClient = true;
  TcpSocket awaiting;
  EXPECT_EQ(awaiting.connect("1.2.3.4", 80, purpose), 0);
  EXPECT_EQ(platform.quickRefusals, (std::vector<bool>{false, true}));
}

TEST_F(TcpSocketFailureTest, ABreakShutsTheTiedSocketDownAndConnectsNoOther) {
  SocketBreaker breaker;
  ConnectionPurpose purpose;
  purpose.breaker = &breaker;
  {
    TcpSocket socket;
    EXPECT_EQ(socket.connect("1.2.3.4", 80, purpose), 0);
  }
  {
    TcpSocket socket;
    EXPECT_EQ(socket.connect("1.2.3.4", 80, purpose), 0);
    EXPECT_TRUE(platform.shutDowns.empty());
    breaker.breakNow();
    EXPECT_EQ(platform.shutDowns, std::vector<uint64_t>{77});
  }
  EXPECT_TRUE(breaker.broken());
  EXPECT_TRUE(breaker.hasCut());
  TcpSocket late;
  EXPECT_NE(late.connect("1.2.3.4", 80, purpose), 0);
  EXPECT_EQ(platform.quickRefusals.size(), 2U);
}

TEST_F(TcpSocketFailureTest, ABreakBetweenExchangesCutsNone) {
  SocketBreaker breaker;
  ConnectionPurpose purpose;
  purpose.breaker = &breaker;
  {
    TcpSocket socket;
    EXPECT_EQ(socket.connect("1.2.3.4", 80, purpose), 0);
  }
  breaker.breakNow();
  EXPECT_TRUE(platform.shutDowns.empty());
  EXPECT_FALSE(breaker.hasCut());
}

TEST_F(TcpSocketFailureTest, UnresolvableHostIsToldThreeTimesAndConnectedAllTheSame) {
  platform.resolution = SocketPlatform::Resolution::kFailed;
  platform.connects = false;
  platform.code = 10049;
  TcpSocket socket;
  EXPECT_EQ(socket.connect("host%s", 80), 10049);
  EXPECT_EQ(platform.resolves, 5);
  EXPECT_EQ(platform.quickRefusals.size(), 1U);  // one attempt
  EXPECT_EQ(platform.connectedAddress, SocketPlatform::kInvalidAddress);
  const std::vector<std::string> lines = log_.lines("ERR");
  ASSERT_EQ(lines.size(), 9U) << log_.text();
  const std::vector<std::string> expected = {kLookUpFailed, kLookUpFailed, kUnresolved,
                                             kLookUpFailed, kUnresolved,   kLookUpFailed,
                                             kUnresolved,   kLookUpFailed};
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.end() - 1), expected);
  EXPECT_NE(lines.back().find(" error: (10049) Address: host%s IP:  inet_addr: -1"),
            std::string::npos)
      << lines.back();
}

TEST_F(TcpSocketFailureTest, HostThatResolvesAtALaterPassIsConnected) {
  platform.goodFromResolve = 4;
  TcpSocket socket;
  EXPECT_EQ(socket.connect("host%s", 80), 0);
  EXPECT_EQ(platform.resolves, 4);
  EXPECT_EQ(log_.count(std::string("ERR ") + kUnresolved), 2U);
  EXPECT_EQ(platform.connectedAddress, 0x04030201U);
}

TEST_F(TcpSocketFailureTest, HostThatResolvesAtTheLastPassIsConnected) {
  platform.goodFromResolve = 5;
  TcpSocket socket;
  EXPECT_EQ(socket.connect("host%s", 80), 0);
  EXPECT_EQ(log_.count(std::string("ERR ") + kUnresolved), 3U);
  EXPECT_EQ(platform.connectedAddress, 0x04030201U);
}

TEST_F(TcpSocketFailureTest, HostWithoutIpv4IsToldAsSuch) {
  platform.resolution = SocketPlatform::Resolution::kNoIpv4;
  EXPECT_EQ(IpAddress::resolve("host"), "");
  EXPECT_EQ(log_.text(), std::string("ERR ") + kNoIpv4 + "\n");
}

TEST_F(TcpSocketFailureTest, FailedConnectLeavesTheSocketToTheDestructor) {
  platform.connects = false;
  platform.code = 5;
  {
    TcpSocket socket;
    EXPECT_EQ(socket.connect("host", 80), 5);
    EXPECT_TRUE(platform.closed.empty());
  }
  EXPECT_EQ(platform.closed, std::vector<uint64_t>{77});
}

TEST_F(TcpSocketFailureTest, ReceiveAndSendReportHandleAndCode) {
  TcpSocket socket;
  ASSERT_EQ(socket.connect("host", 80), 0);
  platform.count = -1;
  platform.code = 10054;
  char buffer[1] = "";
  EXPECT_EQ(socket.recv(buffer, 1), -1);
  EXPECT_EQ(socket.send(buffer, 1), -1);
  EXPECT_EQ(log_.text(), "ERR Socket::recv() [" + handleText(77) + "] - recv failed (10054)\n" +
                             "ERR Socket::send() [" + handleText(77) + "] - send failed (10054)\n");
}

TEST_F(TcpSocketFailureTest, FailedCloseIsReportedAndCountsAsClosed) {
  platform.closeCode = 10038;
  {
    TcpSocket socket;
    ASSERT_EQ(socket.connect("host", 80), 0);
    socket.close();
    socket.close();
  }
  EXPECT_EQ(log_.text(), "ERR Error closing socket " + handleText(77) + " (10038)\n");
  EXPECT_EQ(platform.closed.size(), 1U);
}

class ExchangeFailureTest : public TcpSocketFailureTest {
 protected:
  ExchangeFailureTest() {
    platform.sendLimit = 3;
    platform.reply = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    request_.setBody("text");
  }

  HttpRequest request_{"host", 80};
};

TEST_F(ExchangeFailureTest, RequestTakenInSmallPartsGoesOutWhole) {
  const auto response = request_.invoke();
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "body");
  EXPECT_EQ(platform.sent,
            "GET  HTTP/1.1\r\nConnection: close\r\nContent-Length: 4\r\n"
            "User-Agent: Orvane Vantrel\r\n\r\ntext");
  EXPECT_EQ(platform.closed.size(), 1U);
}

TEST_F(ExchangeFailureTest, SendThatTakesNothingEndsTheExchange) {
  platform.sendLimit = 0;
  EXPECT_FALSE(request_.invoke());
  EXPECT_EQ(platform.closed.size(), 1U);
}

TEST_F(ExchangeFailureTest, FailedSendEndsTheExchangeAndIsReported) {
  platform.sendLimit = 0;
  platform.count = -1;
  platform.code = 10054;
  EXPECT_FALSE(request_.invoke());
  EXPECT_EQ(log_.lines("ERR"), std::vector<std::string>{"Socket::send() [" + handleText(77) +
                                                        "] - send failed (10054)"});
  EXPECT_EQ(platform.closed.size(), 1U);
}

TEST_F(ExchangeFailureTest, FailedReceiveKeepsAWholeReply) {
  platform.reply = "HTTP/1.1 200 OK\r\n\r\nbody";
  platform.count = -1;
  platform.code = 10054;
  const auto response = request_.invoke();
  ASSERT_TRUE(response);
  EXPECT_EQ(response->body(), "body");
  EXPECT_EQ(log_.lines("ERR"), (std::vector<std::string>{
                                   "Socket::recv() [" + handleText(77) + "] - recv failed (10054)",
                                   "HttpRequest::invoke() - socket.recv() returned -1"}));
}

TEST_F(ExchangeFailureTest, EndOfMemoryIsAFailedExchange) {
  platform.memoryEnds = true;
  EXPECT_FALSE(request_.invoke());
  EXPECT_EQ(log_.lines("ERR").size(), 1U);
  EXPECT_EQ(log_.countContaining("ERR HttpRequest::invoke() - "), 1U);
  EXPECT_EQ(platform.closed.size(), 1U);
}

TEST_F(ExchangeFailureTest, OnlyALongBodyLeavesApartFromItsHead) {
  for (const size_t size : {size_t{16384}, size_t{16385}, size_t{100000}}) {
    platform = Platform();
    platform.reply = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
    platform.sendLimit = 1 << 20;
    HttpRequest request("host", 80);
    request.setBody(std::string(size, 'b'));
    ASSERT_TRUE(request.invoke());
    EXPECT_EQ(platform.sends, size <= 16384 ? 1 : 2) << size;
    EXPECT_EQ(platform.sent.substr(platform.sent.size() - size - 4),
              "\r\n\r\n" + std::string(size, 'b'));
  }
}

class LaunchConnectionTest : public TcpSocketFailureTest {
 protected:
  LaunchConnectionTest() {
    files_.writeUrl("http://1.2.3.4:80\nkey");
    setLaunchTimeout(200);
    platform.connects = false;
    platform.code = 10061;
  }

  const TestSupport::ServiceFiles files_{"orvanevantrel.exe"};
  TestSupport::FakePlatform system_;
};

TEST_F(LaunchConnectionTest, OnlyAJustStartedClientIsBelievedToRefuse) {
  EXPECT_FALSE(launchVantrel());
  EXPECT_EQ(system_.starts().size(), 1U);
  EXPECT_EQ(platform.quickRefusals, (std::vector<bool>{false, true, true}));
}

TEST_F(LaunchConnectionTest, AWaitGoesOnToItsEndBesideABreak) {
  SocketBreaker breaker;
  system_.onStart = [&breaker](const std::string&) {
    breaker.breakNow();
    return 0;
  };
  EXPECT_FALSE(launchVantrel(&breaker));
  EXPECT_EQ(system_.sleeps().size(), 2U);
  EXPECT_FALSE(breaker.hasCut());
  // Before the start as long as it takes, then for a moment each.
  EXPECT_EQ(platform.givenUp, (std::vector<bool>{false, true, true}));
}

TEST_F(LaunchConnectionTest, AWaitBesideABreakEndsWhenTheClientIsUp) {
  SocketBreaker breaker;
  setLaunchTimeout(10000);
  system_.onSleep = [&](uint32_t) {
    platform.connects = system_.sleeps().size() == 2;
    platform.code = platform.connects ? 0 : 10061;
    breaker.breakNow();
    return 0;
  };
  EXPECT_TRUE(launchVantrel(&breaker));
  EXPECT_EQ(system_.sleeps().size(), 2U);
}

TEST_F(LaunchConnectionTest, BrokenBeforeTheStartNothingIsStarted) {
  SocketBreaker breaker;
  breaker.breakNow();
  EXPECT_FALSE(breaker.hasCut());
  EXPECT_FALSE(launchVantrel(&breaker));
  EXPECT_TRUE(system_.starts().empty());
}

}  // namespace
}  // namespace Vantrel::Web
