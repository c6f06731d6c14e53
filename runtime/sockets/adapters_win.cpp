// Addresses of this machine's own network adapters.
#include "runtime/sockets/calls_win.h"

#include <iphlpapi.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>

#include "runtime/ov_strings.h"

namespace {

constexpr ULONG kFlags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST |
                         GAA_FLAG_SKIP_DNS_SERVER | GAA_FLAG_SKIP_FRIENDLY_NAME;
static_assert(kFlags == 0x2E);

// Room for some dozen adapters; the system tells when that is not enough, and adapters may come
// between two calls.
constexpr ULONG kFirstSize = 16384;
constexpr int kTries = 4;

using Block = std::unique_ptr<std::byte[]>;

// The list of the adapters; no block when there is no address at all.
ov_rc load(Block* block) {
  ULONG size = kFirstSize;
  ULONG code = ERROR_BUFFER_OVERFLOW;
  for (int i = 0; i < kTries && code == ERROR_BUFFER_OVERFLOW; ++i) {
    block->reset(new (std::nothrow) std::byte[size]);
    if (*block == nullptr) return OV_ENOMEM;
    auto* const first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(block->get());
    code = GetAdaptersAddresses(AF_UNSPEC, kFlags, nullptr, first, &size);
  }
  if (code != 0) block->reset();
  return code == ERROR_NO_DATA ? 0 : static_cast<ov_rc>(code);
}

// Calls visit(adapter, address) for each unicast address until one is accepted.
template <typename Visit>
ov_rc find_address(Visit visit) {
  Block block;
  if (const ov_rc error = load(&block)) return error;
  const auto* adapter = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(block.get());
  for (; adapter != nullptr; adapter = adapter->Next) {
    const IP_ADAPTER_UNICAST_ADDRESS* entry = adapter->FirstUnicastAddress;
    for (; entry != nullptr; entry = entry->Next) {
      if (visit(*adapter, ov::to_record(entry->Address.lpSockaddr))) return 0;
    }
  }
  return 0;
}

bool is_same(const ov_sock_addr& a, const ov_sock_addr& b) {
  int32_t same = 0;
  return ov_sock_ipaddr_is_equal(&a, &b, &same) == 0 && same != 0;
}

bool is_null_or_loopback(const ov_sock_addr* addr) {
  return ov_sock_is_null_ipaddr(addr) != 0 || ov_sock_is_loopback_ipaddr(addr) != 0;
}

bool is_localhost_name(const char* text) {
  static constexpr std::string_view kNames[] = {"localhost", "127.0.0.1", "::1"};
  return std::ranges::find(kNames, text) != std::end(kNames);
}

}  // namespace

ov_rc ov_sock_is_local_interface_address(const ov_sock_addr* addr, int32_t* answer) {
  if (addr == nullptr || answer == nullptr) return OV_EINVAL;
  bool found = false;
  const ov_rc error = find_address([&](const IP_ADAPTER_ADDRESSES&, const ov_sock_addr& own) {
    return found = is_same(own, *addr);
  });
  *answer = found ? 1 : 0;
  return error;
}

ov_rc ov_sock_is_local_address(const ov_sock_addr* addr, int32_t* answer) {
  if (addr == nullptr || answer == nullptr) return OV_EINVAL;
  if (!is_null_or_loopback(addr)) return ov_sock_is_local_interface_address(addr, answer);
  *answer = 1;
  return 0;
}

ov_rc ov_sock_is_localhost(const char* text, int32_t* answer) {
  if (text == nullptr || answer == nullptr) return OV_EINVAL;
  *answer = is_localhost_name(text) ? 1 : 0;
  if (*answer != 0) return 0;
  ov_sock_addr addr = {};
  if (const ov_rc error = ov_sock_resolve_addr(text, &addr)) return error;
  return ov_sock_is_local_interface_address(&addr, answer);
}

ov_rc ov_sock_get_1host_ipaddr(ov_sock_addr* addr) {
  if (addr == nullptr) return OV_EINVAL;
  ov_rc result = OV_SOCK_NO_ADDRESS;
  const ov_rc error = find_address([&](const IP_ADAPTER_ADDRESSES&, const ov_sock_addr& own) {
    if (own.family != AF_INET) return false;
    result = is_null_or_loopback(&own) ? OV_SOCK_NO_HOST_ADDRESS : 0;
    if (result == 0) *addr = own;
    return result == 0;
  });
  return error != 0 ? error : result;
}

ov_rc ov_sock_get_mac_addr(ov_sock*, const ov_sock_addr* addr, char* text, size_t size) {
  if (text == nullptr || is_null_or_loopback(addr)) return OV_EINVAL;
  uint8_t mac[6] = {};
  bool found = false;
  const ov_rc error = find_address([&](const IP_ADAPTER_ADDRESSES& own, const ov_sock_addr& ip) {
    found = is_same(ip, *addr);
    if (found) memcpy(mac, own.PhysicalAddress, sizeof mac);
    return found;
  });
  if (error != 0) return error;
  if (!found) return OV_EINVAL;
  return ov_str_printf_to(text, size, nullptr, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1],
                          mac[2], mac[3], mac[4], mac[5]);
}
