// Arrays of buffers through a socket.
#include <cstdint>
#include <limits>

#include "runtime/sockets/calls_win.h"

namespace {

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
