// Datagrams with the time of their arrival.
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "runtime/sockets/calls_win.h"

namespace {

// Precisions of the caller's timer. The first is the lowest, which the caller should have replaced.
constexpr int32_t kLowest = 1;
constexpr int32_t kMiddle = 2;
constexpr int32_t kHighest = 3;

constexpr int32_t kFailed = -1;

bool lacks(const ov_sock* sock, const void* buffer, int32_t size) {
  return sock == nullptr || buffer == nullptr || size < 0;
}

// The number of bytes, or less than 0 with the code in `*error`.
int32_t receive(const ov_sock* sock, void* buffer, int32_t size, ov_rc* error) {
  *error = OV_EINVAL;
  if (lacks(sock, buffer, size)) return kFailed;
  const int32_t bytes = recv(*sock, static_cast<char*>(buffer), size, 0);
  if (bytes < 0) *error = ov::last_code();
  return bytes;
}

}  // namespace

int32_t ov_sock_send_udp_ts(ov_sock* sock, const void* buffer, int32_t size, ov_timeval*,
                            int32_t level) {
  if (level == kLowest) OV_DEBUG("Warning: pre-specified timer precision level incorrect");
  const bool sent =
      !lacks(sock, buffer, size) && send(*sock, static_cast<const char*>(buffer), size, 0) == size;
  if (sent) return size;
  OV_DEBUG("ov_send_udp_pkt_ts(sock_snd_dat,snd_buf), send");
  return kFailed;
}

int32_t ov_sock_recv_udp_ts(ov_sock* sock, void* buffer, int32_t size, ov_timeval* time,
                            int32_t level) {
  if (level == kLowest) return 0;
  if (level != kMiddle && level != kHighest) {
    OV_DEBUG("invalid timer precision level");
    return kFailed;
  }
  ov_rc error = 0;
  const int32_t bytes = receive(sock, buffer, size, &error);
  if (bytes < 0) {
    OV_DEBUG("recv(udp_fd) bytes=%d size=%d error=%d", bytes, size, error);
    return kFailed;
  }
  if (time != nullptr) ov_time_gettimeofday(time);
  return bytes;
}
