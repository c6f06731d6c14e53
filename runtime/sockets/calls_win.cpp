// Start and end of sockets, and the plain calls on one, with arrays of buffers too.
#include <cstdint>
#include <limits>

#include "runtime/ov_errors.h"
#include "runtime/sockets/calls_win.h"

static_assert(sizeof(ov_sock) == sizeof(SOCKET) && INVALID_SOCKET == ~ov_sock{0});

namespace {

// The platform's constants are unsigned, its function takes them signed.
constexpr int32_t kBlockingCommand = static_cast<int32_t>(FIONBIO);
constexpr int32_t kWaitingCommand = static_cast<int32_t>(FIONREAD);

ov_rc set_nonblocking(ov_sock* sock, uint32_t on) {
  return ov_sock_ioctl(sock, kBlockingCommand, &on);
}

bool lacks(const ov_sock* sock, const WSABUF* buffers, int32_t n, const uint32_t* bytes) {
  return sock == nullptr || bytes == nullptr || n < 0 || (buffers == nullptr && n > 0);
}

uint32_t room(const WSABUF* buffers, int32_t n) {
  uint64_t sum = 0;
  for (int32_t i = 0; i < n; ++i) sum += buffers[i].len;
  constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
  return static_cast<uint32_t>(sum < kMost ? sum : kMost);
}

ov_rc receive(const ov_sock* sock, WSABUF* buffers, int32_t n, uint32_t* bytes, DWORD flags) {
  DWORD moved = 0;
  const int result =
      WSARecv(*sock, buffers, static_cast<DWORD>(n), &moved, &flags, nullptr, nullptr);
  const ov_rc error = ov::socket_code(result);
  *bytes = error == 0 ? static_cast<uint32_t>(moved) : 0;
  return error;
}

}  // namespace

ov_rc ov_sock_init(void) {
  constexpr WORD kVersion = 514;  // 2.2
  WSADATA data;
  return WSAStartup(kVersion, &data);
}

ov_rc ov_sock_fini(void) {
  return ov::socket_code(WSACleanup());
}

ov_rc ov_sock_close(ov_sock* sock) {
  if (sock == nullptr) return OV_EINVAL;
  if (closesocket(*sock) != 0) return ov::last_code();
  *sock = INVALID_SOCKET;
  return 0;
}

ov_rc ov_sock_shutdown(ov_sock* sock, int32_t how) {
  if (sock == nullptr) return OV_EINVAL;
  const ov_rc error = ov::socket_code(shutdown(*sock, how));
  return error == WSAENOTCONN ? 0 : error;
}

ov_rc ov_sock_shutdown_rw(ov_sock* sock) {
  return ov_sock_shutdown(sock, SD_BOTH);
}

ov_rc ov_sock_ioctl(ov_sock* sock, int32_t command, uint32_t* argument) {
  if (sock == nullptr || argument == nullptr) return OV_EINVAL;
  u_long value = *argument;
  if (ioctlsocket(*sock, command, &value) != 0) return ov::last_code();
  *argument = static_cast<uint32_t>(value);
  return 0;
}

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

ov_rc ov_sock_readv(ov_sock* sock, WSABUF* buffers, int32_t n, uint32_t* bytes) {
  if (lacks(sock, buffers, n, bytes)) return OV_EINVAL;
  return receive(sock, buffers, n, bytes, 0);
}

ov_rc ov_sock_peekv(ov_sock* sock, WSABUF* buffers, int32_t n, uint32_t* bytes) {
  if (lacks(sock, buffers, n, bytes)) return OV_EINVAL;
  const ov_rc error = receive(sock, buffers, n, bytes, MSG_PEEK);
  if (error != WSAEMSGSIZE) return error;
  *bytes = room(buffers, n);  // a message that is longer has filled them all
  return 0;
}

ov_rc ov_sock_writev(ov_sock* sock, WSABUF* buffers, int32_t n, uint32_t* bytes) {
  if (lacks(sock, buffers, n, bytes)) return OV_EINVAL;
  DWORD moved = 0;
  const int result = WSASend(*sock, buffers, static_cast<DWORD>(n), &moved, 0, nullptr, nullptr);
  const ov_rc error = ov::socket_code(result);
  *bytes = error == 0 ? static_cast<uint32_t>(moved) : 0;
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
