// A look-up of a host's addresses. Not part of the public header.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

#include <memory>

#include "runtime/sockets/names.h"

namespace ov {

struct FreeAddresses {
  void operator()(addrinfo* head) const { freeaddrinfo(head); }
};

// The head of the list of results.
using AddressList = std::unique_ptr<addrinfo, FreeAddresses>;

// Looks a host and a port up; each may be null. The list is not empty on success.
inline ov_rc look_up(const char* node, const char* service, const addrinfo& hints,
                     AddressList* list) {
  addrinfo* head = nullptr;
  const int result = getaddrinfo(node, service, &hints, &head);
  if (result != 0) return lookup_code(result, WSAGetLastError());
  list->reset(head);
  return head == nullptr ? WSAHOST_NOT_FOUND : 0;
}

}  // namespace ov
