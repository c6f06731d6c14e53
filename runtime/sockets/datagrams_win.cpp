// Datagrams with the time of their arrival, and with the address that they were sent to.
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "runtime/sockets/calls_win.h"

namespace ov {

std::atomic<LPFN_WSARECVMSG> receive_message = nullptr;

}  // namespace ov

namespace {

// Precisions of the caller's timer. The first is the lowest, which the caller should have replaced.
constexpr int32_t kLowest = 1;
constexpr int32_t kMiddle = 2;
constexpr int32_t kHighest = 3;

constexpr int32_t kFailed = -1;

bool lacks(const ov_sock* sock, const void* buffer, int32_t size) {
  return sock == nullptr || buffer == nullptr || size < 0;
}

// The number of bytes, or less than 0 with the code in `*error`.
int32_t receive(const ov_sock* sock, void* buffer, int32_t size, ov_rc* error) {
  *error = OV_EINVAL;
  if (lacks(sock, buffer, size)) return kFailed;
  const int32_t bytes = recv(*sock, static_cast<char*>(buffer), size, 0);
  if (bytes < 0) *error = ov::last_code();
  return bytes;
}

static_assert(SIO_GET_EXTENSION_FUNCTION_POINTER == 0xC8000006);

// Room for the destination and for what a caller may have switched on beside it.
constexpr size_t kControlSize = 256;

// 22 when the system has no such call.
ov_rc fetch_receive_message(SOCKET socket) {
  GUID id = WSAID_WSARECVMSG;
  LPFN_WSARECVMSG call = nullptr;
  DWORD bytes = 0;
  if (WSAIoctl(socket, SIO_GET_EXTENSION_FUNCTION_POINTER, &id, sizeof id, &call, sizeof call,
               &bytes, nullptr, nullptr)) {
    return ov::last_code();
  }
  ov::receive_message = call;
  return call == nullptr ? OV_EINVAL : 0;
}

ov_rc switch_on(SOCKET socket, int level, int option) {
  const int on = 1;
  return ov::socket_code(
      setsockopt(socket, level, option, reinterpret_cast<const char*>(&on), sizeof on));
}

// Takes the data of a control message, if it is of this kind.
template <typename Info>
bool read_info(WSACMSGHDR* header, int level, int type, Info* info) {
  if (header->cmsg_level != level || header->cmsg_type != type) return false;
  if (header->cmsg_len < WSA_CMSG_LEN(sizeof *info)) return false;
  memcpy(info, WSA_CMSG_DATA(header), sizeof *info);
  return true;
}

// Whether this control message tells the destination, and by which interface it came in.
bool read_destination(WSACMSGHDR* header, ov_sock_addr* dst, ULONG* interface_index) {
  in_pktinfo ipv4;
  if (read_info(header, IPPROTO_IP, IP_PKTINFO, &ipv4)) {
    dst->family = AF_INET;
    dst->ipv4 = ipv4.ipi_addr.s_addr;
    *interface_index = ipv4.ipi_ifindex;
    return true;
  }
  in6_pktinfo ipv6;
  if (read_info(header, IPPROTO_IPV6, IPV6_PKTINFO, &ipv6)) {
    dst->family = AF_INET6;
    memcpy(dst->ipv6, &ipv6.ipi6_addr, sizeof dst->ipv6);
    *interface_index = ipv6.ipi6_ifindex;
    return true;
  }
  return false;
}

bool find_destination(WSAMSG* message, ov_sock_addr* dst, ULONG* interface_index) {
  WSACMSGHDR* header = WSA_CMSG_FIRSTHDR(message);
  for (; header != nullptr; header = WSA_CMSG_NXTHDR(message, header)) {
    if (read_destination(header, dst, interface_index)) return true;
  }
  return false;
}

void log_destination(const ov_sock_addr* dst) {
  char text[NI_MAXHOST];
  if (const ov_rc error = ov_sock_get_ipaddrstr(dst, text, sizeof text)) {
    ov_dbg("ov_sock_recvmsg_dstaddr: cannot get ipaddrstr, errno %d", error);
  } else {
    ov_dbg("ov_sock_recvmsg_dstaddr: returning dstaddr [%s] ", text);
  }
}

}  // namespace

int32_t ov_sock_send_udp_ts(ov_sock* sock, const void* buffer, int32_t size, ov_timeval*,
                            int32_t level) {
  if (level == kLowest) OV_DEBUG("Warning: pre-specified timer precision level incorrect");
  const bool sent =
      !lacks(sock, buffer, size) && send(*sock, static_cast<const char*>(buffer), size, 0) == size;
  if (sent) return size;
  OV_DEBUG("ov_send_udp_pkt_ts(sock_snd_dat,snd_buf), send");
  return kFailed;
}

int32_t ov_sock_recv_udp_ts(ov_sock* sock, void* buffer, int32_t size, ov_timeval* time,
                            int32_t level) {
  if (level == kLowest) return 0;
  if (level != kMiddle && level != kHighest) {
    OV_DEBUG("invalid timer precision level");
    return kFailed;
  }
  ov_rc error = 0;
  const int32_t bytes = receive(sock, buffer, size, &error);
  if (bytes < 0) {
    OV_DEBUG("recv(udp_fd) bytes=%d size=%d error=%d", bytes, size, error);
    return kFailed;
  }
  if (time != nullptr) ov_time_gettimeofday(time);
  return bytes;
}

ov_rc ov_sock_set_recvmsg_dstaddr(ov_sock* sock, int32_t isIpv6) {
  if (sock == nullptr) return OV_EINVAL;
  if (ov::receive_message.load() == nullptr) {
    if (const ov_rc error = fetch_receive_message(*sock)) {
      ov_err("ov_sock_set_recvmsg_dstaddr: WSAIoctl() errno %d", error);
      return error;
    }
  }
  if (isIpv6 != 0) {
    const ov_rc error = switch_on(*sock, IPPROTO_IPV6, IPV6_PKTINFO);
    if (error != 0) {
      ov_err("ov_sock_set_recvmsg_dstaddr: setsockopt(sock, IPPROTO_IPV6, IPV6_PKTINFO) errno %d",
             error);
    }
    return error;
  }
  const ov_rc error = switch_on(*sock, IPPROTO_IP, IP_PKTINFO);
  if (error != 0) {
    ov_err("ov_sock_set_recvmsg_dstaddr: setsockopt(sock, IPPROTO_IP, IP_PKTINFO) errno %d", error);
  }
  return error;
}

ov_rc ov_sock_recvmsg_dstaddr(ov_sock* sock, void* buffer, uint32_t size, uint32_t* bytes,
                              ov_sock_addr* from, ov_sock_addr* dst, int32_t isIpv6) {
  if (sock == nullptr || buffer == nullptr || bytes == nullptr || dst == nullptr) return OV_EINVAL;
  *bytes = 0;
  *dst = {};
  const LPFN_WSARECVMSG receive = ov::receive_message;
  if (receive == nullptr) {
    OV_DEBUG("ov_sock_recvmsg_dstaddr: WSARecvMsg undefined, errno %d", OV_EINVAL);
    return OV_EINVAL;
  }
  ov_sock_addr sender = {};
  alignas(WSACMSGHDR) char control[kControlSize] = {};
  WSABUF data = {size, static_cast<char*>(buffer)};
  WSAMSG message = {};
  message.name = ov::to_system(&sender);
  message.namelen = ov::address_size(isIpv6 != 0 ? AF_INET6 : AF_INET);
  message.lpBuffers = &data;
  message.dwBufferCount = 1;
  message.Control = {sizeof control, control};
  DWORD received = 0;
  if (receive(*sock, &message, &received, nullptr, nullptr) != 0) {
    const ov_rc error = ov::last_code();
    OV_DEBUG("ov_sock_recvmsg_dstaddr: WSARecvMsg failed, errno %d", error);
    return error;
  }
  *bytes = received;
  if (from != nullptr) *from = sender;
  ULONG interface_index = 0;
  if (!find_destination(&message, dst, &interface_index)) {
    OV_DEBUG("ov_sock_recvmsg_dstaddr: unable to retrieve ctr msg");
    return OV_EINVAL;
  }
  OV_DEBUG("ov_sock_recvmsg_dstaddr: incoming interface index %d",
           static_cast<int32_t>(interface_index));
  if (g_dbg_level >= 2) log_destination(dst);
  return 0;
}
