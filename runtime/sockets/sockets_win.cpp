// Start and end of sockets, and the plain calls on one.
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

ov_rc ov_sock_shutdown(ov_sock* sock, int32_t how) {
  if (sock == nullptr) return OV_EINVAL;
  if (shutdown(*sock, how) == 0) return 0;
  const ov_rc error = WSAGetLastError();
  return error == WSAENOTCONN ? 0 : error;
}

ov_rc ov_sock_shutdown_rw(ov_sock* sock) {
  return ov_sock_shutdown(sock, SD_BOTH);
}

ov_rc ov_sock_ioctl(ov_sock* sock, int32_t command, uint32_t* argument) {
  if (sock == nullptr || argument == nullptr) return OV_EINVAL;
  u_long value = *argument;
  if (ioctlsocket(*sock, command, &value) != 0) return WSAGetLastError();
  *argument = static_cast<uint32_t>(value);
  return 0;
}

namespace {

// The platform's constants are unsigned, its function takes them signed.
constexpr int32_t kBlockingCommand = static_cast<int32_t>(FIONBIO);
constexpr int32_t kWaitingCommand = static_cast<int32_t>(FIONREAD);

ov_rc set_nonblocking(ov_sock* sock, uint32_t on) {
  return ov_sock_ioctl(sock, kBlockingCommand, &on);
}

}  // namespace

ov_rc ov_sock_set_blocking(ov_sock* sock) {
  return set_nonblocking(sock, 0);
}

ov_rc ov_sock_set_nonblocking(ov_sock* sock) {
  return set_nonblocking(sock, 1);
}

ov_rc ov_sock_get_nonblocking(ov_sock* sock, int32_t* value) {
  if (sock == nullptr || value == nullptr) return OV_EINVAL;
  const ov_rc error = set_nonblocking(sock, static_cast<uint32_t>(*value));
  *value = error == 0 ? 0 : SOCKET_ERROR;
  return error;
}

ov_rc ov_sock_get_tcp_inq_size(ov_sock* sock, int32_t* size) {
  if (size == nullptr) return OV_EINVAL;
  uint32_t waiting = 0;
  const ov_rc error = ov_sock_ioctl(sock, kWaitingCommand, &waiting);
  if (error == 0) *size = static_cast<int32_t>(waiting);
  return error;
}

ov_rc ov_sock_timer_level(ov_sock*, int32_t* level) {
  constexpr int32_t kLevel = 3;
  if (level == nullptr) return OV_EINVAL;
  *level = kLevel;
  return 0;
}

int32_t ov_sock_is_nonblocking_safe(void) {
  return 0;
}
