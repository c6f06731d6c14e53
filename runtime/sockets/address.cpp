// What is known of an address record, and of the texts that name one, without the system.
#include "runtime/sockets/address.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/decimal.h"

static_assert(sizeof(ov_sock_addr) == 28 && offsetof(ov_sock_addr, ipv6) == 8);

namespace {

constexpr size_t kIpv4Size = 16;

bool is_known(const ov_sock_addr* addr) {
  return addr != nullptr && (addr->family == OV_SOCK_IPV4 || addr->family == OV_SOCK_IPV6);
}

bool is_ipv4(const ov_sock_addr* addr) {
  return addr != nullptr && addr->family == OV_SOCK_IPV4;
}

bool is_ipv6(const ov_sock_addr* addr) {
  return addr != nullptr && addr->family == OV_SOCK_IPV6;
}

// The four bytes in the order in which they are written.
struct Octets {
  explicit Octets(const ov_sock_addr* addr) { memcpy(byte, &addr->ipv4, sizeof byte); }
  uint8_t byte[4];
};

// Whether all bytes are zero but the last, which is `last`.
bool is_ipv6_number(const ov_sock_addr* addr, uint8_t last) {
  const uint8_t number[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, last};
  return memcmp(addr->ipv6, number, sizeof number) == 0;
}

bool same_address(const ov_sock_addr* a, const ov_sock_addr* b) {
  if (!is_known(a) || a->family != b->family) return false;
  if (is_ipv4(a)) return a->ipv4 == b->ipv4;
  return memcmp(a->ipv6, b->ipv6, sizeof a->ipv6) == 0;
}

// Results of a look-up that say enough by themselves.
constexpr int32_t kPlainResults[] = {8, 10022, 10044, 10047, 10109, 11001, 11002, 11003};

const char* split_at(const char* host_begin, const char* host_end, const char* port,
                     char (&host)[ov::kHostSize]) {
  const auto length = static_cast<size_t>(host_end - host_begin);
  if (length >= ov::kHostSize) return nullptr;
  memcpy(host, host_begin, length);
  host[length] = '\0';
  return port;
}

}  // namespace

ov_rc ov_sock_copy_addr(ov_sock_addr* to, const ov_sock_addr* from, int32_t* isIpv6) {
  if (to == nullptr || !is_known(from)) return OV_EINVAL;
  memmove(to, from, is_ipv4(from) ? kIpv4Size : sizeof *to);
  if (isIpv6 != nullptr) *isIpv6 = is_ipv6(from) ? 1 : 0;
  return 0;
}

uint16_t ov_sock_get_port(const ov_sock_addr* addr) {
  return is_known(addr) ? addr->port : uint16_t{0};
}

ov_rc ov_sock_set_port(ov_sock_addr* addr, uint16_t port) {
  if (!is_known(addr)) return OV_EINVAL;
  const uint8_t bytes[2] = {static_cast<uint8_t>(port >> 8), static_cast<uint8_t>(port & 0xFF)};
  memcpy(&addr->port, bytes, sizeof bytes);
  return 0;
}

ov_rc ov_sock_set_scope_id(ov_sock_addr* addr, const char* text) {
  if (addr == nullptr || text == nullptr) return OV_EINVAL;
  const char* const percent = strchr(text, '%');
  if (percent == nullptr) return OV_EINVAL;
  const ov::Decimal number = ov::read_decimal(percent + 1);
  const bool whole = number.digits > 0 && percent[1 + number.digits] == '\0';
  if (!whole || number.value > UINT32_MAX) return OV_EINVAL;
  addr->scope_id = static_cast<uint32_t>(number.value);
  return 0;
}

ov_rc ov_sock_ipaddr_is_equal(const ov_sock_addr* a, const ov_sock_addr* b, int32_t* answer) {
  if (a == nullptr || b == nullptr || answer == nullptr) return OV_EINVAL;
  *answer = same_address(a, b) ? 1 : 0;
  return 0;
}

ov_rc ov_sock_addr_is_equal(const ov_sock_addr* a, const ov_sock_addr* b, int32_t* answer) {
  if (a == nullptr || b == nullptr || answer == nullptr) return OV_EINVAL;
  *answer = same_address(a, b) && a->port == b->port ? 1 : 0;
  return 0;
}

int32_t ov_sock_is_null_ipaddr(const ov_sock_addr* addr) {
  if (addr == nullptr || addr->family == 0) return 1;
  const bool null = is_ipv4(addr) ? addr->ipv4 == 0 : is_ipv6(addr) && is_ipv6_number(addr, 0);
  return null ? 1 : 0;
}

int32_t ov_sock_is_loopback_ipaddr(const ov_sock_addr* addr) {
  const bool loopback =
      is_ipv4(addr) ? Octets(addr).byte[0] == 127 : is_ipv6(addr) && is_ipv6_number(addr, 1);
  return loopback ? 1 : 0;
}

int32_t ov_sock_is_valid_mcast_addr(const ov_sock_addr* addr) {
  // All ones is not among the groups of IPv4.
  const bool group =
      is_ipv4(addr) ? (Octets(addr).byte[0] & 0xF0) == 0xE0 : is_ipv6(addr) && addr->ipv6[0] == 255;
  return group ? 1 : 0;
}

ov_rc ov_sock_is_private_network(const ov_sock_addr* addr, int32_t* answer) {
  if (addr == nullptr || answer == nullptr) return OV_EINVAL;
  *answer = 0;
  if (!is_ipv4(addr)) return 0;
  const Octets octets(addr);
  const uint8_t first = octets.byte[0];
  const uint8_t second = octets.byte[1];
  const bool isPrivate =
      first == 10 || (first == 192 && second == 168) || (first == 172 && (second & 0xF0) == 16);
  *answer = isPrivate ? 1 : 0;
  return 0;
}

namespace ov {

const char* split_port(const char* text, char (&host)[kHostSize]) {
  const char* const bracket = strchr(text, '[');
  const char* const end = bracket == nullptr ? nullptr : strstr(bracket, "]:");
  if (end != nullptr) return split_at(bracket + 1, end, end + 2, host);
  if (ov_str_cntchr(text, ':') != 1) return nullptr;
  const char* const colon = strchr(text, ':');
  return split_at(text, colon, colon + 1, host);
}

ov_rc lookup_code(int32_t result, int32_t last_error) {
  for (const int32_t plain : kPlainResults) {
    if (result == plain) return result;
  }
  return last_error != 0 ? last_error : OV_EINTERNAL1;
}

}  // namespace ov
