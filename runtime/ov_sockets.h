/* Sockets of the base runtime. Part of ov_runtime.h. Results are 0 or an error code. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* The platform's record of that name. */
struct linger;

/* A socket; all ones when closed. */
typedef uint64_t ov_sock;

/* Starts and ends the use of sockets; the calls are counted, so each user makes a pair of them. */
ov_rc ov_sock_init(void);
ov_rc ov_sock_fini(void);

/* Closes, and marks the record closed on success. */
ov_rc ov_sock_close(ov_sock* sock);

/* Ends sending, receiving or both (`how` 0, 1, 2); not being connected is success. */
ov_rc ov_sock_shutdown(ov_sock* sock, int32_t how);
ov_rc ov_sock_shutdown_rw(ov_sock* sock);

/* The platform's control call. */
ov_rc ov_sock_ioctl(ov_sock* sock, int32_t command, uint32_t* argument);

/* Make the socket blocking or not. The third form sets the mode too, by `*value`, and stores the
   call's result there: it does not tell the mode. */
ov_rc ov_sock_set_blocking(ov_sock* sock);
ov_rc ov_sock_set_nonblocking(ov_sock* sock);
ov_rc ov_sock_get_nonblocking(ov_sock* sock, int32_t* value);

/* Bytes that wait to be received. */
ov_rc ov_sock_get_tcp_inq_size(ov_sock* sock, int32_t* size);

/* Always stores 3; always 0. */
ov_rc ov_sock_timer_level(ov_sock* sock, int32_t* level);
int32_t ov_sock_is_nonblocking_safe(void);

/* Options. Each pair is one setsockopt and one getsockopt; the value is read from and stored into
   `*value`. */
ov_rc ov_sock_set_rcvbuf(ov_sock* sock, int64_t* value);
ov_rc ov_sock_get_rcvbuf(ov_sock* sock, int64_t* value);
ov_rc ov_sock_set_sndbuf(ov_sock* sock, int64_t* value);
ov_rc ov_sock_get_sndbuf(ov_sock* sock, int64_t* value);
ov_rc ov_sock_set_rcvlowat(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_rcvlowat(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_sndlowat(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_sndlowat(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_reuseaddr(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_reuseaddr(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_broadcast(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_broadcast(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_linger(ov_sock* sock, struct linger* value);
ov_rc ov_sock_get_linger(ov_sock* sock, struct linger* value);
ov_rc ov_sock_set_tcp_keepalive(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_keepalive(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_tcp_nodelay(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_nodelay(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_options(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_options(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_ttl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_ttl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_mcast_if(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_mcast_if(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_mcast_ttl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_mcast_ttl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_mcast_loop(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_mcast_loop(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_dontfrag(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_dontfrag(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_pktinfo(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_pktinfo(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_error(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_type(ov_sock* sock, int32_t* value);
/* Path MTU discovery is the don't-fragment bit here. */
ov_rc ov_sock_set_ip_mtudiscover(ov_sock* sock, int32_t* value);
/* Join and leave a group: {group, interface}, both IPv4 in network order. */
ov_rc ov_sock_add_ip_mcast_membership(ov_sock* sock, int32_t* value);
ov_rc ov_sock_drp_ip_mcast_membership(ov_sock* sock, int32_t* value);

/* These have no counterpart on this platform: they do nothing and give 0. */
ov_rc ov_sock_get_bindtodevice(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_bindtodevice(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_mtudiscover(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_rcverr(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_rcverr(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_ip_tos(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_ip_tos(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_priority(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_priority(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_keepcnt(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_tcp_keepcnt(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_keepidl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_tcp_keepidl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_keepitvl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_tcp_keepitvl(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_linger(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_tcp_linger(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_tcp_outq_size(ov_sock* sock, int32_t* value);
ov_rc ov_sock_get_timestamp(ov_sock* sock, int32_t* value);
ov_rc ov_sock_set_timestamp(ov_sock* sock, int32_t* value);

/* An address; all zero for none. `family` is 2 for IPv4 and 23 for IPv6; `port` and `ipv4` are in
   network order. */
typedef struct {
  uint16_t family;
  uint16_t port;
  uint32_t ipv4;
  uint8_t ipv6[16];
  uint32_t scope_id;
} ov_sock_addr;

/* Copies what the family uses and tells the family by `*isIpv6`, which may be null. 22 for another
   family. */
ov_rc ov_sock_copy_addr(ov_sock_addr* to, const ov_sock_addr* from, int32_t* isIpv6);

/* The port as it is stored, in network order; 0 for an unknown family. */
uint16_t ov_sock_get_port(const ov_sock_addr* addr);

/* Stores a port given in the machine's order; 22 for an unknown family. */
ov_rc ov_sock_set_port(ov_sock_addr* addr, uint16_t port);

/* Stores the number behind the "%" of an IPv6 text; 22 when there is none. */
ov_rc ov_sock_set_scope_id(ov_sock_addr* addr, const char* text);

/* Compare the address, or port and address; `*answer` is 1 or 0. */
ov_rc ov_sock_ipaddr_is_equal(const ov_sock_addr* a, const ov_sock_addr* b, int32_t* answer);
ov_rc ov_sock_addr_is_equal(const ov_sock_addr* a, const ov_sock_addr* b, int32_t* answer);

/* 1 or 0: no address or all zero; 127.0.0.0/8 or ::1; a multicast group. */
int32_t ov_sock_is_null_ipaddr(const ov_sock_addr* addr);
int32_t ov_sock_is_loopback_ipaddr(const ov_sock_addr* addr);
int32_t ov_sock_is_valid_mcast_addr(const ov_sock_addr* addr);

/* `*answer` is 1 for IPv4 in 192.168.0.0/16, 172.16.0.0/12 or 10.0.0.0/8; else 0. */
ov_rc ov_sock_is_private_network(const ov_sock_addr* addr, int32_t* answer);

OV_END_DECLS
