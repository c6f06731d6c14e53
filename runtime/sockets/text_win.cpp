// Numeric texts of addresses.
#include "runtime/ov_errors.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "runtime/sockets/calls_win.h"

namespace {

// A size at or below this is refused for the text of an address.
constexpr size_t kTooSmall = 64;

// Tries IPv4, then IPv6; the code is that of the second.
ov_rc read_text(const char* text, ov_sock_addr* addr) {
  if (ov_sock_pton(AF_INET, text, addr) == 0) return 0;
  return ov_sock_pton(AF_INET6, text, addr);
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
