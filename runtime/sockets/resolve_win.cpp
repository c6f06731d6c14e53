// Sockets and addresses from a host's name.
#include "runtime/ov_errors.h"
#include "runtime/ov_sockets.h"
#include "runtime/sockets/calls_win.h"
#include "runtime/sockets/lookup_win.h"

namespace {

constexpr int kBacklog = 128;

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
