// Start, end and closing of sockets.
#include <winsock2.h>

#include "runtime/ov_errors.h"
#include "runtime/ov_sockets.h"

static_assert(sizeof(ov_sock) == sizeof(SOCKET) && INVALID_SOCKET == ~ov_sock{0});

ov_rc ov_sock_init(void) {
  constexpr WORD kVersion = 514;  // 2.2
  WSADATA data;
  return WSAStartup(kVersion, &data);
}

ov_rc ov_sock_fini(void) {
  return WSACleanup() == 0 ? 0 : WSAGetLastError();
}

ov_rc ov_sock_close(ov_sock* sock) {
  if (sock == nullptr) return OV_EINVAL;
  if (closesocket(*sock) != 0) return WSAGetLastError();
  *sock = INVALID_SOCKET;
  return 0;
}
