#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

// What a look-up was asked, and the list or the codes that it gives instead of the system's.
struct Lookup {
  std::string node, service;
  bool hasNode = false, hasService = false;
  addrinfo hints = {};
  addrinfo* list = nullptr;
  bool faked = false;
  int result = 0;
  int lastError = 0;
  int freed = 0;
} lookup;

INT WSAAPI lookUp(PCSTR node, PCSTR service, const ADDRINFOA* hints, PADDRINFOA* list) {
  lookup.hasNode = node != nullptr;
  lookup.hasService = service != nullptr;
  lookup.node = lookup.hasNode ? node : "";
  lookup.service = lookup.hasService ? service : "";
  lookup.hints = *hints;
  if (!lookup.faked) {
    static const auto real = ov::socket_function<decltype(&lookUp)>("getaddrinfo");
    return real(node, service, hints, list);
  }
  *list = lookup.list;
  WSASetLastError(lookup.lastError);
  return lookup.result;
}

void WSAAPI freeList(PADDRINFOA list) {
  ++lookup.freed;
  if (lookup.faked) {
    EXPECT_EQ(lookup.list, list);  // the head
  } else {
    static const auto real = ov::socket_function<decltype(&freeList)>("freeaddrinfo");
    real(list);
  }
}

int sockets = 0;  // open ones

SOCKET WSAAPI makeSocket(int family, int type, int protocol) {
  static const auto real = ov::socket_function<decltype(&makeSocket)>("socket");
  const SOCKET made = real(family, type, protocol);
  if (made != INVALID_SOCKET) ++sockets;
  return made;
}

int WSAAPI closeSocket(SOCKET socket) {
  --sockets;
  static const auto real = ov::socket_function<decltype(&closeSocket)>("closesocket");
  return real(socket);
}

// The calls on the way to a server, and the one that fails.
std::vector<std::string> steps;
std::string failing;

bool fails(const std::string& step) {
  steps.push_back(step);
  if (failing != step) return false;
  WSASetLastError(WSAENOBUFS);
  return true;
}

int WSAAPI setOption(SOCKET socket, int level, int option, const char* value, int size) {
  EXPECT_EQ(SOL_SOCKET, level);
  EXPECT_EQ(SO_REUSEADDR, option);
  EXPECT_EQ(1, *value);
  if (fails("reuseaddr")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&setOption)>("setsockopt");
  return real(socket, level, option, value, size);
}

int WSAAPI bindTo(SOCKET socket, const sockaddr* address, int size) {
  if (fails("bind")) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&bindTo)>("bind");
  return real(socket, address, size);
}

int WSAAPI listenAt(SOCKET socket, int backlog) {
  if (fails("listen " + std::to_string(backlog))) return SOCKET_ERROR;
  static const auto real = ov::socket_function<decltype(&listenAt)>("listen");
  return real(socket, backlog);
}

}  // namespace

extern "C" {
decltype(&getaddrinfo) __imp_getaddrinfo = lookUp;
decltype(&freeaddrinfo) __imp_freeaddrinfo = freeList;
decltype(&socket) __imp_socket = makeSocket;
decltype(&closesocket) __imp_closesocket = closeSocket;
decltype(&setsockopt) __imp_setsockopt = setOption;
decltype(&bind) __imp_bind = bindTo;
decltype(&listen) __imp_listen = listenAt;
}

namespace {

using Steps = std::vector<std::string>;

// One result of a look-up.
struct Entry : addrinfo {
  explicit Entry(const ov_sock_addr& at, int type = SOCK_STREAM) : addrinfo{}, address(at) {
    ai_family = address.family;
    ai_socktype = type;
    ai_addr = ov::system_address(&address);
    ai_addrlen = sizeof address;
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ov_sock_addr address;
};

class SocketResolveTest : public ov::SocketFixture {
 protected:
  SocketResolveTest() {
    lookup = {};
    sockets = 0;
    steps.clear();
    failing.clear();
  }
  void fake(int result, int lastError, addrinfo* list = nullptr) {
    lookup = {};
    lookup.faked = true;
    lookup.result = result;
    lookup.lastError = lastError;
    lookup.list = list;
  }
  // "node" or "node|service".
  std::string asked(const char* text) {
    ov_sock_resolve_addr(text, &addr_);
    EXPECT_EQ(SOCK_DGRAM, lookup.hints.ai_socktype);
    EXPECT_EQ(0, lookup.hints.ai_family);
    EXPECT_EQ(0, lookup.hints.ai_flags);
    EXPECT_EQ(0, lookup.hints.ai_protocol);
    EXPECT_TRUE(lookup.hasNode);
    return lookup.hasService ? lookup.node + "|" + lookup.service : lookup.node;
  }
  std::string text() {
    char out[65] = "";
    EXPECT_EQ(0, ov_sock_get_ipaddrstr(&addr_, out, sizeof out));
    return std::string(out) + " " + std::to_string(ntohs(ov_sock_get_port(&addr_)));
  }
  // The port of a listening socket, as text.
  static std::string portOf(ov_sock server) {
    return std::to_string(ntohs(ov::own_address(server).port));
  }

  ov_sock_addr addr_ = {};
  ov_sock sock_ = 7;
};

TEST_F(SocketResolveTest, TakesHostAndPortApart) {
  EXPECT_EQ(0, ov_sock_resolve_addr("[::1]:8080", &addr_));
  EXPECT_EQ("::1 8080", text());
  EXPECT_EQ(0, ov_sock_resolve_addr("127.0.0.5:80", &addr_));
  EXPECT_EQ("127.0.0.5 80", text());
  EXPECT_EQ(0, ov_sock_resolve_addr("127.0.0.6", &addr_));
  EXPECT_EQ("127.0.0.6 0", text());
  EXPECT_EQ(0, ov_sock_resolve_addr("::1", &addr_));
  EXPECT_EQ("::1 0", text());
  EXPECT_EQ(4, lookup.freed);
}

TEST_F(SocketResolveTest, WhatIsLookedUp) {
  fake(11001, 0);
  EXPECT_EQ("::1|8080", asked("[::1]:8080"));
  EXPECT_EQ("host|http", asked("host:http"));
  EXPECT_EQ("2001:db8::7", asked("2001:db8::7"));
  EXPECT_EQ("a:b:c", asked("a:b:c"));
  EXPECT_EQ("[::1]", asked("[::1]"));
  EXPECT_EQ("]|[", asked("]:["));
  const std::string host(255, 'h');
  EXPECT_EQ("[" + host + "]:80", asked(("[" + host + "]:80").c_str()));
  EXPECT_EQ(host + ":80", asked((host + ":80").c_str()));
}

TEST_F(SocketResolveTest, CodesOfALookUp) {
  for (const int plain : {8, 10022, 10044, 10047, 10109, 11001, 11002, 11003}) {
    fake(plain, 5);
    EXPECT_EQ(plain, ov_sock_resolve_addr("host", &addr_));
    EXPECT_EQ(plain, ov_sock_create_server("host", "1", 0, SOCK_STREAM, &sock_));
    EXPECT_EQ(plain, ov_sock_create_client("host", "1", 0, SOCK_STREAM, &sock_));
  }
  fake(11004, 10050);
  EXPECT_EQ(10050, ov_sock_resolve_addr("host", &addr_));
  fake(11004, 0);
  EXPECT_EQ(28691, ov_sock_resolve_addr("host", &addr_));
  EXPECT_EQ(0, lookup.freed);
  lookup = {};
  EXPECT_EQ(11001, ov_sock_resolve_addr("no-such-host.invalid", &addr_));
  EXPECT_EQ(0, addr_.family);
}

TEST_F(SocketResolveTest, FirstResultAloneCounts) {
  ov_sock_addr other = ov::loopback(AF_INET6);
  other.family = 6;
  Entry second(ov::loopback(AF_INET));
  Entry first(other);
  first.ai_next = &second;
  fake(0, 0, &first);
  EXPECT_EQ(22, ov_sock_resolve_addr("host", &addr_));
  EXPECT_EQ(1, lookup.freed);
  EXPECT_EQ(0, addr_.family);
  fake(0, 0, nullptr);
  EXPECT_EQ(11001, ov_sock_resolve_addr("host", &addr_));
}

TEST_F(SocketResolveTest, StoresFamilyPortAndAddressOnly) {
  ov_sock_addr found = ov::loopback(AF_INET6);
  found.port = 99;
  found.scope_id = 3;
  Entry entry(found);
  fake(0, 0, &entry);
  addr_.scope_id = 44;
  EXPECT_EQ(0, ov_sock_resolve_addr("host", &addr_));
  EXPECT_EQ(23, addr_.family);
  EXPECT_EQ(99, addr_.port);
  EXPECT_EQ(1, addr_.ipv6[15]);
  EXPECT_EQ(44U, addr_.scope_id);
  EXPECT_EQ(22, ov_sock_resolve_addr(nullptr, &addr_));
  EXPECT_EQ(22, ov_sock_resolve_addr("host", nullptr));
}

TEST_F(SocketResolveTest, ServerAndClient) {
  ov_sock server = 7;
  ASSERT_EQ(0, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, &server));
  keep(server);
  EXPECT_EQ(AI_PASSIVE, lookup.hints.ai_flags);
  EXPECT_EQ(AF_INET, lookup.hints.ai_family);
  EXPECT_EQ(SOCK_STREAM, lookup.hints.ai_socktype);
  EXPECT_EQ((Steps{"reuseaddr", "bind", "listen 128"}), steps);
  ov_sock client = 7;
  const std::string port = portOf(server);
  ASSERT_EQ(0, ov_sock_create_client("127.0.0.1", port.c_str(), AF_INET, SOCK_STREAM, &client));
  keep(client);
  EXPECT_EQ(0, lookup.hints.ai_flags);
  EXPECT_EQ(3U, steps.size());  // a client is not bound
  const ov_sock accepted = keep(accept(server, nullptr, nullptr));
  EXPECT_EQ(2, send(client, "hi", 2, 0));
  char text[4];
  EXPECT_EQ(2, recv(accepted, text, sizeof text, 0));
  EXPECT_EQ(2, lookup.freed);
  EXPECT_EQ(2, sockets);
}

TEST_F(SocketResolveTest, ServerWithoutANodeListensEverywhere) {
  ASSERT_EQ(0, ov_sock_create_server(nullptr, "0", AF_INET, SOCK_STREAM, &sock_));
  EXPECT_EQ(0U, ov::own_address(keep(sock_)).ipv4);
}

TEST_F(SocketResolveTest, ClientFromALocalAddress) {
  ov_sock server = 7;
  ASSERT_EQ(0, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, &server));
  keep(server);
  const std::string port = portOf(server);
  ASSERT_EQ(0, ov_sock_create_client2("127.0.0.9:5", "127.0.0.1", port.c_str(), AF_INET,
                                      SOCK_STREAM, &sock_));
  addr_ = ov::own_address(keep(sock_));
  const std::string own = text();
  EXPECT_TRUE(own.starts_with("127.0.0.9 ")) << own;
  EXPECT_NE("127.0.0.9 5", own);  // any port
  for (const char* bad : {"", "x", "::1"}) {
    EXPECT_EQ(10022,
              ov_sock_create_client2(bad, "127.0.0.1", port.c_str(), AF_INET, SOCK_STREAM, &sock_));
    EXPECT_EQ(ov::kClosedSocket, sock_);
  }
}

TEST_F(SocketResolveTest, EachResultIsTried) {
  ov_sock server = 7;
  ASSERT_EQ(0, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, &server));
  keep(server);
  ov_sock_addr odd = {};
  odd.family = 99;  // no socket of that kind
  Entry good(ov::own_address(server));
  Entry refused(ov::loopback(AF_INET));
  Entry unknown(odd);
  unknown.ai_next = &refused;
  refused.ai_next = &good;
  good.ai_addrlen = refused.ai_addrlen = sizeof(sockaddr_in);
  refused.address.port = htons(1);
  fake(0, 0, &unknown);
  ASSERT_EQ(0, ov_sock_create_client("host", "1", 0, SOCK_STREAM, &sock_));
  keep(sock_);
  EXPECT_EQ(1, lookup.freed);
  EXPECT_EQ(2, sockets);  // the one that was refused is closed
  ov_sock bound = 7;
  refused.address.port = 0;
  ASSERT_EQ(0, ov_sock_create_server("host", "1", 0, SOCK_STREAM, &bound));
  keep(bound);
  EXPECT_EQ(3, sockets);
}

TEST_F(SocketResolveTest, CodeOfTheLastResult) {
  ov_sock_addr odd = {};
  odd.family = 99;
  Entry refused(ov::loopback(AF_INET));
  refused.address.port = htons(1);
  refused.ai_addrlen = sizeof(sockaddr_in);
  Entry unknown(odd);
  unknown.ai_next = &refused;
  fake(0, 0, &unknown);
  EXPECT_EQ(10061, ov_sock_create_client("host", "1", 0, SOCK_STREAM, &sock_));
  EXPECT_EQ(ov::kClosedSocket, sock_);
  unknown.ai_next = nullptr;
  EXPECT_EQ(10047, ov_sock_create_client("host", "1", 0, SOCK_STREAM, &sock_));
  EXPECT_EQ(10047, ov_sock_create_server("host", "1", 0, SOCK_STREAM, &sock_));
  EXPECT_EQ(0, sockets);
  EXPECT_EQ(3, lookup.freed);
}

TEST_F(SocketResolveTest, ServerThatFailsLeavesNothingOpen) {
  for (const char* step : {"reuseaddr", "bind", "listen 128"}) {
    SCOPED_TRACE(step);
    failing = step;
    sock_ = 7;
    EXPECT_EQ(10055, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, &sock_));
    EXPECT_EQ(ov::kClosedSocket, sock_);
    EXPECT_EQ(0, sockets);
  }
  failing = "bind";
  EXPECT_EQ(10055,
            ov_sock_create_client2("127.0.0.1", "127.0.0.1", "1", AF_INET, SOCK_STREAM, &sock_));
  EXPECT_EQ(0, sockets);
  failing.clear();
  EXPECT_EQ(10045, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_DGRAM, &sock_));
  EXPECT_EQ(0, sockets);
  EXPECT_EQ(22, ov_sock_create_server("127.0.0.1", "0", AF_INET, SOCK_STREAM, nullptr));
  EXPECT_EQ(22, ov_sock_create_client("127.0.0.1", "0", AF_INET, SOCK_STREAM, nullptr));
}

}  // namespace
