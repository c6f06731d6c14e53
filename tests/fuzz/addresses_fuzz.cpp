// The texts of addresses: host and port, and the scope of an IPv6 address.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "runtime/ov_sockets.h"
#include "runtime/sockets/address.h"
#include "tests/support/runtime/sockets_names_reference.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

void split(const std::string& text) {
  char host[ov::kHostSize];
  memset(host, '#', sizeof host);
  const char* const port = ov::split_port(text.c_str(), host);
  const auto parts = ov::split_port_reference(text);
  check((port != nullptr) == parts.has_value());
  if (!parts) return check(host[0] == '#' && host[ov::kHostSize - 1] == '#');
  check(parts->first == host && parts->second == port);
  check(port + strlen(port) == text.c_str() + text.size());
}

void readScope(const std::string& text) {
  constexpr uint32_t kBefore = 7;
  ov_sock_addr addr = {};
  addr.scope_id = kBefore;
  const ov_rc result = ov_sock_set_scope_id(&addr, text.c_str());
  if (result != 0) return check(addr.scope_id == kBefore);
  std::string digits = text.substr(text.find('%') + 1);
  check(!digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos);
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
  check(digits == std::to_string(addr.scope_id));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string whole(reinterpret_cast<const char*>(data), size);
  const std::string text(whole, 0, whole.find('\0'));
  split(text);
  readScope(text);
  return 0;
}
