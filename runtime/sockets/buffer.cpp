#include "runtime/sockets/buffer.h"

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"

namespace ov {

namespace {

constexpr ov_rc kInterrupted = 4;

enum class Wait { kReady, kTimeUp, kFailed };

// Takes slices until the socket is ready. With none left from the start there is no wait: the
// transfer itself blocks.
Wait wait_ready(Transport& transport, int64_t* slices) {
  while (*slices > 0) {
    --*slices;
    const int32_t ready = transport.wait();
    if (ready < 0) return Wait::kFailed;
    if (ready > 0) return Wait::kReady;
    if (*slices == 0) return Wait::kTimeUp;
  }
  return Wait::kReady;
}

ov_rc failure(ov_rc error, uint32_t count) {
  if (error == OV_EWOULDBLOCK) return count > 0 ? 0 : OV_EWOULDBLOCK;
  ov_err("ov_buf_io: IO error (errno=%d)", error);
  return error;
}

}  // namespace

ov_rc transfer(Transport& transport, uint32_t length, uint32_t* count, int32_t seconds) {
  if (seconds < 0 || count == nullptr) return OV_EINVAL;
  *count = 0;
  int64_t slices = seconds * kSlicesPerSecond;
  while (*count < length) {
    const Wait wait = wait_ready(transport, &slices);
    if (wait == Wait::kFailed) return transport.code();
    if (wait == Wait::kTimeUp) return 0;
    const uint32_t pending = length - *count;
    const int32_t moved = transport.move(*count, pending);
    if (moved == 0) {
      OV_DEBUG("ov_buf_io: IO closed, pending %s buf %d", transport.name(),
               static_cast<int32_t>(pending));
      return 0;
    }
    if (moved > 0) {
      *count += static_cast<uint32_t>(moved);
      continue;
    }
    const ov_rc error = transport.code();
    if (error != kInterrupted) return failure(error, *count);
  }
  if (length > 0) OV_DEBUG("ov_buf_io: successful completion bytes %u", *count);
  return 0;
}

}  // namespace ov
