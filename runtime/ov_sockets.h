/* Sockets of the base runtime. Part of ov_runtime.h.

   Results are 0 or an error code: the system's, or one of those of ov_errors.h that are named here;
   a null pointer that is not said to be allowed gives OV_EINVAL. What a function stores is there on
   success only, unless it says more, and no argument may overlap another but in ov_sock_copy_addr
   and the two comparisons. */
#pragma once

#include "runtime/ov_errors.h"
#include "runtime/ov_time.h"
#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* The platform's records of these names; the second is its WSABUF. */
struct linger;
struct _WSABUF;

/* A socket; all ones when closed. */
typedef uint64_t ov_sock;

/* Starts and ends the use of sockets; the calls are counted, so each user makes a pair of them. */
ov_rc ov_sock_init(void);
ov_rc ov_sock_fini(void);

/* Closes, and marks the record closed on success. */
ov_rc ov_sock_close(ov_sock* sock);

/* Ends sending, receiving or both (`how` 0, 1, 2); not being connected, OV_ENOTCONN, is
   success. */
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

/* Receive into, send from and look into the queue through an array of `n` buffers, in one call.
   `*bytes` is what was moved. A peek at a message that is longer than the buffers is a success that
   fills them. */
ov_rc ov_sock_readv(ov_sock* sock, struct _WSABUF* buffers, int32_t n, uint32_t* bytes);
ov_rc ov_sock_writev(ov_sock* sock, struct _WSABUF* buffers, int32_t n, uint32_t* bytes);
ov_rc ov_sock_peekv(ov_sock* sock, struct _WSABUF* buffers, int32_t n, uint32_t* bytes);

/* Receive or send `length` bytes; `*count` is what was moved, on failure too. The plain forms block
   until it is done. The others stop after `seconds` (0 for no limit): running out of time and a
   peer that closes are success with a short count. A last wait that succeeds is followed by calls
   that block. On a non-blocking socket with nothing moved OV_EWOULDBLOCK; OV_EINVAL for negative
   seconds, and `*count` is as it was. */
ov_rc ov_buf_read(ov_sock* sock, void* buffer, uint32_t length, uint32_t* count);
ov_rc ov_buf_write(ov_sock* sock, const void* buffer, uint32_t length, uint32_t* count);
ov_rc ov_buf_read_tmout(ov_sock* sock, void* buffer, uint32_t length, uint32_t* count,
                        int32_t seconds);
ov_rc ov_buf_write_tmout(ov_sock* sock, const void* buffer, uint32_t length, uint32_t* count,
                         int32_t seconds);

/* A connected pair of TCP sockets on the loopback address, tried again while its port is in use.
   The caller closes both; all ones on failure. OV_ETIMEDOUT when the two did not meet within 5
   seconds. */
ov_rc ov_sock_pair(ov_sock sockets[2]);

/* Send and receive one datagram on a connected socket: its size in bytes, or -1, and then nothing
   of use is in `buffer` and nothing was stored in `*time`, which may be null. `level` is the
   precision of the caller's timer, 1 to 3. Sending uses no time and all levels mean the same, with
   a debug line at level 1. Receiving stores the time of arrival in `*time` at levels 2 and 3;
   level 1 gives 0 without receiving, other levels -1. */
int32_t ov_sock_send_udp_ts(ov_sock* sock, const void* buffer, int32_t size, ov_timeval* time,
                            int32_t level);
int32_t ov_sock_recv_udp_ts(ov_sock* sock, void* buffer, int32_t size, ov_timeval* time,
                            int32_t level);

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

/* Families of addresses. */
#define OV_SOCK_IPV4 2
#define OV_SOCK_IPV6 23

/* An address; all zero for none. `family` is one of the two; `port` and `ipv4` are in
   network order. */
typedef struct {
  uint16_t family;
  uint16_t port;
  uint32_t ipv4;
  uint8_t ipv6[16];
  uint32_t scope_id;
} ov_sock_addr;

/* Copies what the family uses and leaves the rest of `*to` alone; tells the family by `*isIpv6`,
   which may be null. The two records may be one or overlap. OV_EINVAL for another family. */
ov_rc ov_sock_copy_addr(ov_sock_addr* to, const ov_sock_addr* from, int32_t* isIpv6);

/* The port as it is stored, in network order; 0 for an unknown family. */
uint16_t ov_sock_get_port(const ov_sock_addr* addr);

/* Stores a port given in the machine's order; OV_EINVAL for an unknown family. */
ov_rc ov_sock_set_port(ov_sock_addr* addr, uint16_t port);

/* Stores the number behind the "%" of an IPv6 text; OV_EINVAL when there is none, and for one that
   is no number of 32 bits. */
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

/* Numeric text from the address of that family in `source`, and back. The text needs
   `size` bytes, else OV_ERANGE; 65 hold every one. Reading stores the whole record, with a port or
   scope that the text may have. */
ov_rc ov_sock_ntop(int32_t family, const ov_sock_addr* source, char* text, size_t size);
ov_rc ov_sock_pton(int32_t family, const char* text, ov_sock_addr* destination);

/* Reads IPv4 or IPv6 text: stores family and address and leaves port and scope alone; `isIpv6` may
   be null. The second tells the family only; OV_EINVAL for other text. */
ov_rc ov_sock_store_ipaddr(const char* text, ov_sock_addr* addr, int32_t* isIpv6);
ov_rc ov_sock_ip6_or_ip4(const char* text, int32_t* isIpv6);

/* Numeric text of an address; OV_EINVAL for a size of 64 or less or an unknown family. The second
   also tells the family, unless `isIpv6` is null. */
ov_rc ov_sock_get_ipaddrstr(const ov_sock_addr* addr, char* text, size_t size);
ov_rc ov_sock_copy_ipaddrstr(const ov_sock_addr* addr, char* text, size_t size, int32_t* isIpv6);

/* Looks up "host", "host:port" or "[IPv6]:port" and stores family, port and address of the first
   result; without a port it is 0. The other fields keep what they held, which may be any scope:
   zero the record first. OV_EINVAL when the first result is of another family. A failure leaves the
   record alone. */
ov_rc ov_sock_resolve_addr(const char* text, ov_sock_addr* addr);

/* `*answer` is 1 for "localhost", "127.0.0.1", "::1" and a host with an address of this machine's
   adapters. The code of the look-up, with 0 in `*answer`, when that fails. */
ov_rc ov_sock_is_localhost(const char* text, int32_t* answer);
/* `*answer` is 1 for an address of this machine's adapters; the first also for a null or loopback
   address. */
ov_rc ov_sock_is_local_address(const ov_sock_addr* addr, int32_t* answer);
ov_rc ov_sock_is_local_interface_address(const ov_sock_addr* addr, int32_t* answer);

/* Results of ov_sock_get_1host_ipaddr beside the system's codes. */
#define OV_SOCK_NO_ADDRESS 1
#define OV_SOCK_NO_HOST_ADDRESS 2

/* The first IPv4 address of an adapter that is neither null nor loopback. OV_SOCK_NO_ADDRESS when
   no adapter has an IPv4 address, OV_SOCK_NO_HOST_ADDRESS when all are null or loopback. */
ov_rc ov_sock_get_1host_ipaddr(ov_sock_addr* addr);

/* Hardware address of the adapter with that address, as in "00:1b:44:11:3a:b7" (18 bytes, else
   OV_EBUFFER). OV_EINVAL for a null or loopback address and one that no adapter has. `sock` is not
   read. */
ov_rc ov_sock_get_mac_addr(ov_sock* sock, const ov_sock_addr* addr, char* text, size_t size);

/* A socket that listens at, or is connected to, the first result of a look-up with which that
   works; all ones and the last code when none does. Node, service, family and type are those of the
   platform's look-up. The third form binds to `local` (IPv4 text, or null) first. The caller closes
   the socket. */
ov_rc ov_sock_create_server(const char* node, const char* service, int32_t family, int32_t type,
                            ov_sock* sock);
ov_rc ov_sock_create_client(const char* node, const char* service, int32_t family, int32_t type,
                            ov_sock* sock);
ov_rc ov_sock_create_client2(const char* local, const char* node, const char* service,
                             int32_t family, int32_t type, ov_sock* sock);

/* Prepares a datagram socket for the next function. */
ov_rc ov_sock_set_recvmsg_dstaddr(ov_sock* sock, int32_t isIpv6);

/* Receives one datagram: its size, its sender (`from` may be null), and the address that it was
   sent to, without a port. OV_EMSGSIZE when it is longer than `size`. OV_EINVAL when the system did
   not tell the destination, as for a socket that is not prepared; if it is prepared in another way,
   the datagram, its size and sender are there all the same. */
ov_rc ov_sock_recvmsg_dstaddr(ov_sock* sock, void* buffer, uint32_t size, uint32_t* bytes,
                              ov_sock_addr* from, ov_sock_addr* dst, int32_t isIpv6);

OV_END_DECLS
