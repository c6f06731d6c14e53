// Socket options: each function is one setsockopt or one getsockopt.
#include "runtime/errors/asserts.h"
#include "runtime/sockets/calls_win.h"

namespace {

template <typename Value>
ov_rc set(const ov_sock* sock, int level, int number, const Value* value,
          int bytes = sizeof(Value)) {
  if (sock == nullptr || value == nullptr) return OV_EINVAL;
  const char* const data = reinterpret_cast<const char*>(value);
  return ov::socket_code(setsockopt(*sock, level, number, data, bytes));
}

template <typename Value>
ov_rc get(const ov_sock* sock, int level, int number, Value* value) {
  if (sock == nullptr || value == nullptr) return OV_EINVAL;
  *value = {};  // the system may fill only a part
  int bytes = sizeof(Value);
  char* const data = reinterpret_cast<char*>(value);
  return ov::socket_code(getsockopt(*sock, level, number, data, &bytes));
}

}  // namespace

ov_rc ov_sock_set_rcvbuf(ov_sock* sock, int64_t* value) {
  return set(sock, SOL_SOCKET, SO_RCVBUF, value);
}
ov_rc ov_sock_get_rcvbuf(ov_sock* sock, int64_t* value) {
  return get(sock, SOL_SOCKET, SO_RCVBUF, value);
}

ov_rc ov_sock_set_sndbuf(ov_sock* sock, int64_t* value) {
  return set(sock, SOL_SOCKET, SO_SNDBUF, value);
}
ov_rc ov_sock_get_sndbuf(ov_sock* sock, int64_t* value) {
  return get(sock, SOL_SOCKET, SO_SNDBUF, value);
}

ov_rc ov_sock_set_rcvlowat(ov_sock* sock, int32_t* value) {
  return set(sock, SOL_SOCKET, SO_RCVLOWAT, value);
}
ov_rc ov_sock_get_rcvlowat(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_RCVLOWAT, value);
}

ov_rc ov_sock_set_sndlowat(ov_sock* sock, int32_t* value) {
  return set(sock, SOL_SOCKET, SO_SNDLOWAT, value);
}
ov_rc ov_sock_get_sndlowat(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_SNDLOWAT, value);
}

ov_rc ov_sock_set_reuseaddr(ov_sock* sock, int32_t* value) {
  return set(sock, SOL_SOCKET, SO_REUSEADDR, value);
}
ov_rc ov_sock_get_reuseaddr(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_REUSEADDR, value);
}

ov_rc ov_sock_set_broadcast(ov_sock* sock, int32_t* value) {
  return set(sock, SOL_SOCKET, SO_BROADCAST, value);
}
ov_rc ov_sock_get_broadcast(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_BROADCAST, value);
}

ov_rc ov_sock_set_linger(ov_sock* sock, struct linger* value) {
  return set(sock, SOL_SOCKET, SO_LINGER, value);
}
ov_rc ov_sock_get_linger(ov_sock* sock, struct linger* value) {
  return get(sock, SOL_SOCKET, SO_LINGER, value);
}

ov_rc ov_sock_set_tcp_keepalive(ov_sock* sock, int32_t* value) {
  return set(sock, SOL_SOCKET, SO_KEEPALIVE, value);
}
ov_rc ov_sock_get_tcp_keepalive(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_KEEPALIVE, value);
}

ov_rc ov_sock_set_tcp_nodelay(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_TCP, TCP_NODELAY, value);
}
ov_rc ov_sock_get_tcp_nodelay(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_TCP, TCP_NODELAY, value);
}

ov_rc ov_sock_set_ip_options(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_OPTIONS, value);
}
ov_rc ov_sock_get_ip_options(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_OPTIONS, value);
}

ov_rc ov_sock_set_ip_ttl(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_TTL, value);
}
ov_rc ov_sock_get_ip_ttl(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_TTL, value);
}

ov_rc ov_sock_set_ip_mcast_if(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_MULTICAST_IF, value);
}
ov_rc ov_sock_get_ip_mcast_if(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_MULTICAST_IF, value);
}

ov_rc ov_sock_set_ip_mcast_ttl(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_MULTICAST_TTL, value);
}
ov_rc ov_sock_get_ip_mcast_ttl(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_MULTICAST_TTL, value);
}

ov_rc ov_sock_set_ip_mcast_loop(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_MULTICAST_LOOP, value);
}
ov_rc ov_sock_get_ip_mcast_loop(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_MULTICAST_LOOP, value);
}

ov_rc ov_sock_set_ip_dontfrag(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_DONTFRAGMENT, value);
}
ov_rc ov_sock_get_ip_dontfrag(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_DONTFRAGMENT, value);
}

ov_rc ov_sock_set_ip_pktinfo(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_PKTINFO, value);
}
ov_rc ov_sock_get_ip_pktinfo(ov_sock* sock, int32_t* value) {
  return get(sock, IPPROTO_IP, IP_PKTINFO, value);
}

ov_rc ov_sock_get_error(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_ERROR, value);
}
ov_rc ov_sock_get_type(ov_sock* sock, int32_t* value) {
  return get(sock, SOL_SOCKET, SO_TYPE, value);
}
ov_rc ov_sock_set_ip_mtudiscover(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_DONTFRAGMENT, value);
}
ov_rc ov_sock_add_ip_mcast_membership(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_ADD_MEMBERSHIP, value, sizeof(ip_mreq));
}
ov_rc ov_sock_drp_ip_mcast_membership(ov_sock* sock, int32_t* value) {
  return set(sock, IPPROTO_IP, IP_DROP_MEMBERSHIP, value, sizeof(ip_mreq));
}

// One function with twenty names: what has no counterpart on this platform does nothing.
ov_rc ov_sock_get_bindtodevice(ov_sock*, int32_t*) {
  ov::count_failed_assert();
  return 0;
}
#define OV_SOCK_SAME(name) \
  ov_rc name(ov_sock*, int32_t*) __attribute__((alias("ov_sock_get_bindtodevice")))
OV_SOCK_SAME(ov_sock_set_bindtodevice);
OV_SOCK_SAME(ov_sock_get_ip_mtudiscover);
OV_SOCK_SAME(ov_sock_get_ip_rcverr);
OV_SOCK_SAME(ov_sock_set_ip_rcverr);
OV_SOCK_SAME(ov_sock_get_ip_tos);
OV_SOCK_SAME(ov_sock_set_ip_tos);
OV_SOCK_SAME(ov_sock_get_priority);
OV_SOCK_SAME(ov_sock_set_priority);
OV_SOCK_SAME(ov_sock_get_tcp_keepcnt);
OV_SOCK_SAME(ov_sock_set_tcp_keepcnt);
OV_SOCK_SAME(ov_sock_get_tcp_keepidl);
OV_SOCK_SAME(ov_sock_set_tcp_keepidl);
OV_SOCK_SAME(ov_sock_get_tcp_keepitvl);
OV_SOCK_SAME(ov_sock_set_tcp_keepitvl);
OV_SOCK_SAME(ov_sock_get_tcp_linger);
OV_SOCK_SAME(ov_sock_set_tcp_linger);
OV_SOCK_SAME(ov_sock_get_tcp_outq_size);
OV_SOCK_SAME(ov_sock_get_timestamp);
OV_SOCK_SAME(ov_sock_set_timestamp);
#undef OV_SOCK_SAME
