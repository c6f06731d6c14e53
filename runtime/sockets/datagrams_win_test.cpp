#include "runtime/sockets/calls_win.h"

#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

using ov::Messages;

int fetches = 0;
int fetchFailure = 0;
bool fetchNothing = false;
int optionFailure = 0;
int nameFailure = 0;

int WSAAPI control(SOCKET socket, DWORD code, LPVOID in, DWORD inSize, LPVOID out, DWORD outSize,
                   LPDWORD bytes, LPWSAOVERLAPPED overlapped,
                   LPWSAOVERLAPPED_COMPLETION_ROUTINE routine) {
  EXPECT_EQ(0xC8000006, code);
  ++fetches;
  if (fetchNothing) return 0;
  if (fetchFailure != 0) {
    WSASetLastError(fetchFailure);
    return SOCKET_ERROR;
  }
  static const auto real = ov::socket_function<decltype(&control)>("WSAIoctl");
  return real(socket, code, in, inSize, out, outSize, bytes, overlapped, routine);
}

int WSAAPI setOption(SOCKET socket, int level, int option, const char* value, int size) {
  EXPECT_EQ(19, option);
  EXPECT_TRUE(level == IPPROTO_IP || level == IPPROTO_IPV6);
  if (optionFailure != 0) {
    WSASetLastError(optionFailure);
    return SOCKET_ERROR;
  }
  static const auto real = ov::socket_function<decltype(&setOption)>("setsockopt");
  return real(socket, level, option, value, size);
}

INT WSAAPI nameInfo(const SOCKADDR* address, socklen_t length, PCHAR node, DWORD nodeSize,
                    PCHAR service, DWORD serviceSize, INT flags) {
  if (nameFailure != 0) {
    WSASetLastError(nameFailure);
    return nameFailure;
  }
  static const auto real = ov::socket_function<decltype(&nameInfo)>("getnameinfo");
  return real(address, length, node, nodeSize, service, serviceSize, flags);
}

}  // namespace

extern "C" {
decltype(&WSAIoctl) __imp_WSAIoctl = control;
decltype(&setsockopt) __imp_setsockopt = setOption;
decltype(&getnameinfo) __imp_getnameinfo = nameInfo;
}

namespace {

// Appends a control message with data of that size.
template <typename Data>
void append(WSAMSG* message, DWORD* used, int type, const Data& data) {
  WSAMSG rest = *message;
  rest.Control.buf += *used;
  rest.Control.len -= *used;
  WSACMSGHDR* const header = WSA_CMSG_FIRSTHDR(&rest);
  header->cmsg_level = IPPROTO_IP;
  header->cmsg_type = type;
  header->cmsg_len = WSA_CMSG_LEN(sizeof data);
  memcpy(WSA_CMSG_DATA(header), &data, sizeof data);
  *used += static_cast<DWORD>(WSA_CMSG_SPACE(sizeof data));
}

// A message whose control data tell the time to live, half a destination, and the destination.
INT WSAAPI receiveWithMore(SOCKET, LPWSAMSG message, LPDWORD bytes, LPWSAOVERLAPPED,
                           LPWSAOVERLAPPED_COMPLETION_ROUTINE) {
  in_pktinfo info = {};
  info.ipi_addr.s_addr = htonl(0x0A000007);
  info.ipi_ifindex = 12;
  DWORD used = 0;
  append(message, &used, IP_TTL, int{64});
  append(message, &used, IP_PKTINFO, int{-1});
  append(message, &used, IP_PKTINFO, info);
  message->Control.len = used;
  *bytes = 3;
  return 0;
}

class SocketDestinationTest : public ov::SocketFixture {
 protected:
  SocketDestinationTest() {
    ov::receive_message = nullptr;
    fetches = fetchFailure = optionFailure = nameFailure = 0;
    fetchNothing = false;
  }
  ov_rc receive(ov_sock* sock, int32_t isIpv6) {
    return ov_sock_recvmsg_dstaddr(sock, buffer_, sizeof buffer_, &bytes_, &from_, &dst_, isIpv6);
  }
  // Sends to a port of this machine.
  ov_sock sendTo(ov_sock_addr to, const std::string& text) {
    const ov_sock sender = make(to.family, SOCK_DGRAM);
    const int size = static_cast<int>(text.size());
    EXPECT_EQ(size, sendto(sender, text.data(), size, 0, ov::system_address(&to),
                           ov::system_size(to.family)));
    return sender;
  }
  // The lines of a datagram that came with its destination; the index is the machine's affair.
  void expectLines(const std::string& last) {
    const Messages lines = log_.take();
    ASSERT_EQ(2U, lines.size());
    const std::string index = "DBG ov_sock_recvmsg_dstaddr: incoming interface index ";
    EXPECT_TRUE(lines[0].starts_with(index) && lines[0].size() > index.size()) << lines[0];
    EXPECT_EQ("DBG ov_sock_recvmsg_dstaddr: " + last, lines[1]);
  }

  char buffer_[8] = {};
  uint32_t bytes_ = 77;
  ov_sock_addr from_ = {}, dst_ = {};
};

TEST_F(SocketDestinationTest, Ipv4) {
  ov_sock receiver = make(AF_INET, SOCK_DGRAM);
  ov_sock_addr any = {};
  any.family = AF_INET;
  ASSERT_EQ(0, bind(receiver, ov::system_address(&any), sizeof(sockaddr_in)));
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  ov_sock_addr to = ov::own_address(receiver);
  ASSERT_EQ(0, ov_sock_store_ipaddr("127.0.0.5", &to, nullptr));
  const ov_sock sender = sendTo(to, "hello");
  ASSERT_EQ(0, receive(&receiver, 0));
  EXPECT_EQ("hello", std::string(buffer_, bytes_));
  EXPECT_EQ(2, dst_.family);
  EXPECT_EQ(to.ipv4, dst_.ipv4);
  EXPECT_EQ(0, dst_.port);
  EXPECT_EQ(2, from_.family);
  EXPECT_EQ(ov::own_address(sender).port, from_.port);
  expectLines("returning dstaddr [127.0.0.5] ");
}

TEST_F(SocketDestinationTest, Ipv6) {
  ov_sock receiver = makeReceiver(AF_INET6);
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 1));
  sendTo(ov::own_address(receiver), "hi");
  ASSERT_EQ(0, receive(&receiver, 1));
  EXPECT_EQ(2U, bytes_);
  int32_t same = 0;
  const ov_sock_addr self = ov::loopback(AF_INET6);
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&self, &dst_, &same));
  EXPECT_EQ(1, same);
  EXPECT_EQ(0, ov_sock_ipaddr_is_equal(&self, &from_, &same));
  EXPECT_EQ(1, same);
  expectLines("returning dstaddr [::1] ");
}

TEST_F(SocketDestinationTest, DestinationBehindOtherControlData) {
  ov::receive_message = receiveWithMore;
  ov_sock receiver = makeReceiver(AF_INET);
  EXPECT_EQ(0, receive(&receiver, 0));
  EXPECT_EQ(3U, bytes_);
  EXPECT_EQ(htonl(0x0A000007), dst_.ipv4);
  EXPECT_EQ((Messages{"DBG ov_sock_recvmsg_dstaddr: incoming interface index 12",
                      "DBG ov_sock_recvmsg_dstaddr: returning dstaddr [10.0.0.7] "}),
            log_.take());
}

TEST_F(SocketDestinationTest, SenderNeedNotBeTold) {
  ov_sock receiver = makeReceiver(AF_INET);
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  sendTo(ov::own_address(receiver), "hi");
  EXPECT_EQ(0, ov_sock_recvmsg_dstaddr(&receiver, buffer_, 8, &bytes_, nullptr, &dst_, 0));
  EXPECT_EQ(2U, bytes_);
}

TEST_F(SocketDestinationTest, CallIsFetchedOncePerProcess) {
  ov_sock one = makeReceiver(AF_INET);
  ov_sock other = makeReceiver(AF_INET);
  EXPECT_EQ(0, ov_sock_set_recvmsg_dstaddr(&one, 0));
  EXPECT_EQ(0, ov_sock_set_recvmsg_dstaddr(&other, 0));
  EXPECT_EQ(1, fetches);
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketDestinationTest, CallThatCannotBeFetched) {
  ov_sock receiver = makeReceiver(AF_INET);
  fetchFailure = 10045;
  EXPECT_EQ(10045, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  EXPECT_EQ(Messages{"ERR ov_sock_set_recvmsg_dstaddr: WSAIoctl() errno 10045"}, log_.take());
  fetchFailure = 0;
  fetchNothing = true;
  EXPECT_EQ(22, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  EXPECT_EQ(Messages{"ERR ov_sock_set_recvmsg_dstaddr: WSAIoctl() errno 22"}, log_.take());
  EXPECT_EQ(22, receive(&receiver, 0));
  EXPECT_EQ(0U, bytes_);
  EXPECT_EQ(Messages{"DBG ov_sock_recvmsg_dstaddr: WSARecvMsg undefined, errno 22"}, log_.take());
  EXPECT_EQ(22, ov_sock_set_recvmsg_dstaddr(nullptr, 0));
}

TEST_F(SocketDestinationTest, OptionThatCannotBeSet) {
  ov_sock receiver = makeReceiver(AF_INET);
  optionFailure = 10042;
  EXPECT_EQ(10042, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  EXPECT_EQ(10042, ov_sock_set_recvmsg_dstaddr(&receiver, 1));
  const std::string start = "ERR ov_sock_set_recvmsg_dstaddr: setsockopt(sock, ";
  EXPECT_EQ((Messages{start + "IPPROTO_IP, IP_PKTINFO) errno 10042",
                      start + "IPPROTO_IPV6, IPV6_PKTINFO) errno 10042"}),
            log_.take());
}

TEST_F(SocketDestinationTest, FailedReceive) {
  ov_sock receiver = makeReceiver(AF_INET);
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  ASSERT_EQ(0, ov_sock_set_nonblocking(&receiver));
  EXPECT_EQ(10035, receive(&receiver, 0));
  EXPECT_EQ(Messages{"DBG ov_sock_recvmsg_dstaddr: WSARecvMsg failed, errno 10035"}, log_.take());
  EXPECT_EQ(0, dst_.family);
  EXPECT_EQ(0U, bytes_);
}

TEST_F(SocketDestinationTest, SocketThatIsNotPrepared) {
  ov_sock prepared = makeReceiver(AF_INET);
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&prepared, 0));
  ov_sock receiver = makeReceiver(AF_INET);
  sendTo(ov::own_address(receiver), "hello");
  EXPECT_EQ(22, receive(&receiver, 0));
  EXPECT_EQ("hello", std::string(buffer_, bytes_));  // it is there all the same
  EXPECT_EQ(2, from_.family);
  EXPECT_EQ(0, dst_.family);
  EXPECT_EQ(Messages{"DBG ov_sock_recvmsg_dstaddr: unable to retrieve ctr msg"}, log_.take());
}

TEST_F(SocketDestinationTest, AddressWithoutText) {
  ov_sock receiver = makeReceiver(AF_INET);
  ASSERT_EQ(0, ov_sock_set_recvmsg_dstaddr(&receiver, 0));
  sendTo(ov::own_address(receiver), "hi");
  nameFailure = 10014;
  EXPECT_EQ(0, receive(&receiver, 0));
  EXPECT_EQ(2, dst_.family);
  expectLines("cannot get ipaddrstr, errno 10014");
  sendTo(ov::own_address(receiver), "hi");
  ov_dbg_set_all(1);
  EXPECT_EQ(0, receive(&receiver, 0));
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SocketDestinationTest, BadArguments) {
  ov_sock receiver = makeReceiver(AF_INET);
  EXPECT_EQ(22, ov_sock_recvmsg_dstaddr(nullptr, buffer_, 8, &bytes_, &from_, &dst_, 0));
  EXPECT_EQ(22, ov_sock_recvmsg_dstaddr(&receiver, nullptr, 8, &bytes_, &from_, &dst_, 0));
  EXPECT_EQ(22, ov_sock_recvmsg_dstaddr(&receiver, buffer_, 8, nullptr, &from_, &dst_, 0));
  EXPECT_EQ(22, ov_sock_recvmsg_dstaddr(&receiver, buffer_, 8, &bytes_, &from_, nullptr, 0));
}

}  // namespace
