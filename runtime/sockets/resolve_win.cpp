// Addresses from and to text, and sockets from a host's name.
#include "runtime/ov_errors.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "runtime/sockets/calls_win.h"

namespace {

constexpr int kBacklog = 128;

// A size at or below this is refused for the text of an address.
constexpr size_t kTooSmall = 64;

// Tries IPv4, then IPv6; the code is that of the second.
ov_rc read_text(const char* text, ov_sock_addr* addr) {
  if (ov_sock_pton(AF_INET, text, addr) == 0) return 0;
  return ov_sock_pton(AF_INET6, text, addr);
}

using Prepare = ov_rc (*)(SOCKET socket, const addrinfo& address, const ov_sock_addr* local);

// Makes a socket for each result until one can be prepared; the code is that of the last.
ov_rc first_prepared(const addrinfo* entry, const ov_sock_addr* local, Prepare prepare,
                     ov_sock* sock) {
  ov_rc error = 0;
  for (; entry != nullptr; entry = entry->ai_next) {
    ov::OwnedSocket owner(socket(entry->ai_family, entry->ai_socktype, entry->ai_protocol));
    error = owner ? prepare(owner.get(), *entry, local) : ov::last_code();
    if (error != 0) continue;
    *sock = owner.release();
    return 0;
  }
  return error;
}

ov_rc bind_reusable(SOCKET socket, const addrinfo& address, const ov_sock_addr*) {
  ov_sock sock = socket;
  int32_t on = 1;
  if (const ov_rc error = ov_sock_set_reuseaddr(&sock, &on)) return error;
  return ov::socket_code(bind(socket, address.ai_addr, static_cast<int>(address.ai_addrlen)));
}

ov_rc connect_from(SOCKET socket, const addrinfo& address, const ov_sock_addr* local) {
  if (local != nullptr && bind(socket, ov::to_system(local), ov::address_size(local->family))) {
    return ov::last_code();
  }
  return ov::socket_code(connect(socket, address.ai_addr, static_cast<int>(address.ai_addrlen)));
}

ov_rc look_up(const char* node, const char* service, int32_t family, int32_t type, int32_t flags,
              ov::AddressList* list) {
  addrinfo hints = {};
  hints.ai_flags = flags;
  hints.ai_family = family;
  hints.ai_socktype = type;
  return ov::look_up(node, service, hints, list);
}

}  // namespace

ov_rc ov_sock_ntop(int32_t family, const ov_sock_addr* source, char* text, size_t size) {
  const int length = ov::address_size(family);
  if (length == 0 || source == nullptr || text == nullptr || size == 0) return OV_EINVAL;
  ov_sock_addr addr = {};
  memcpy(&addr, source, static_cast<size_t>(length));
  addr.family = static_cast<uint16_t>(family);
  // The system's own check of a small size is not the same everywhere, so it gets room enough.
  char host[NI_MAXHOST];
  if (getnameinfo(ov::to_system(&addr), length, host, sizeof host, nullptr, 0, NI_NUMERICHOST)) {
    return ov::last_code();
  }
  if (strlen(host) >= size) return OV_ERANGE;
  return ov_str_ncpy(text, host, size);
}

ov_rc ov_sock_pton(int32_t family, const char* text, ov_sock_addr* destination) {
  if (text == nullptr || destination == nullptr) return OV_EINVAL;
  ov_sock_addr addr = {};
  int length = sizeof addr;
  // The system reads the text only.
  if (WSAStringToAddressA(const_cast<char*>(text), family, nullptr, ov::to_system(&addr),
                          &length)) {
    return ov::last_code();
  }
  *destination = addr;
  return 0;
}

ov_rc ov_sock_store_ipaddr(const char* text, ov_sock_addr* addr, int32_t* isIpv6) {
  if (addr == nullptr) return OV_EINVAL;
  ov_sock_addr read = {};
  if (const ov_rc error = read_text(text, &read)) return error;
  addr->family = read.family;
  if (read.family == AF_INET) {
    addr->ipv4 = read.ipv4;
  } else {
    memcpy(addr->ipv6, read.ipv6, sizeof addr->ipv6);
  }
  if (isIpv6 != nullptr) *isIpv6 = read.family == AF_INET6 ? 1 : 0;
  return 0;
}

ov_rc ov_sock_ip6_or_ip4(const char* text, int32_t* isIpv6) {
  ov_sock_addr read = {};
  if (isIpv6 == nullptr || read_text(text, &read) != 0) return OV_EINVAL;
  *isIpv6 = read.family == AF_INET6 ? 1 : 0;
  return 0;
}

ov_rc ov_sock_get_ipaddrstr(const ov_sock_addr* addr, char* text, size_t size) {
  if (addr == nullptr || size <= kTooSmall) return OV_EINVAL;
  return ov_sock_ntop(addr->family, addr, text, size);
}

ov_rc ov_sock_copy_ipaddrstr(const ov_sock_addr* addr, char* text, size_t size, int32_t* isIpv6) {
  if (const ov_rc error = ov_sock_get_ipaddrstr(addr, text, size)) return error;
  if (isIpv6 != nullptr) *isIpv6 = addr->family == AF_INET6 ? 1 : 0;
  return 0;
}

ov_rc ov_sock_resolve_addr(const char* text, ov_sock_addr* addr) {
  if (text == nullptr || addr == nullptr) return OV_EINVAL;
  char host[ov::kHostSize];
  const char* const port = ov::split_port(text, host);
  ov::AddressList list;
  if (const ov_rc error =
          look_up(port == nullptr ? text : host, port, AF_UNSPEC, SOCK_DGRAM, 0, &list)) {
    return error;
  }
  const ov_sock_addr found = ov::to_record(list->ai_addr);
  if (found.family != AF_INET && found.family != AF_INET6) return OV_EINVAL;
  addr->family = found.family;
  addr->port = found.port;
  if (found.family == AF_INET) {
    addr->ipv4 = found.ipv4;
  } else {
    memcpy(addr->ipv6, found.ipv6, sizeof addr->ipv6);
  }
  return 0;
}

ov_rc ov_sock_create_server(const char* node, const char* service, int32_t family, int32_t type,
                            ov_sock* sock) {
  if (sock == nullptr) return OV_EINVAL;
  *sock = INVALID_SOCKET;
  ov::AddressList list;
  if (const ov_rc error = look_up(node, service, family, type, AI_PASSIVE, &list)) return error;
  ov_sock bound = ~ov_sock{0};
  if (const ov_rc error = first_prepared(list.get(), nullptr, bind_reusable, &bound)) return error;
  ov::OwnedSocket server(bound);
  if (listen(server.get(), kBacklog) != 0) return ov::last_code();
  *sock = server.release();
  return 0;
}

ov_rc ov_sock_create_client(const char* node, const char* service, int32_t family, int32_t type,
                            ov_sock* sock) {
  return ov_sock_create_client2(nullptr, node, service, family, type, sock);
}

ov_rc ov_sock_create_client2(const char* local, const char* node, const char* service,
                             int32_t family, int32_t type, ov_sock* sock) {
  if (sock == nullptr) return OV_EINVAL;
  *sock = INVALID_SOCKET;
  ov_sock_addr from = {};
  if (local != nullptr) {
    if (const ov_rc error = ov_sock_pton(AF_INET, local, &from)) return error;
    from.port = 0;
  }
  ov::AddressList list;
  if (const ov_rc error = look_up(node, service, family, type, 0, &list)) return error;
  return first_prepared(list.get(), local == nullptr ? nullptr : &from, connect_from, sock);
}
