#include "runtime/sockets/pair.h"

#include "runtime/ov_log.h"

namespace ov {

namespace {

constexpr ov_rc kAddressInUse = 10048;
// What each pause is longer than the one before; the first is none.
constexpr uint32_t kPauseGrowth = 20;
constexpr ov_sock kClosed = ~ov_sock{0};

}  // namespace

ov_rc make_pair(PairMaker& maker, ov_sock sockets[2], int32_t retries) {
  uint32_t pause = 0;
  for (int32_t retry = 0;; ++retry) {
    sockets[0] = kClosed;
    sockets[1] = kClosed;
    const PairStep failed = maker.attempt(sockets);
    if (failed.name == nullptr) {
      if (retry > 0) ov_log("ov_sock_pair: success on reattempt %d", retry);
      return 0;
    }
    if (failed.code != kAddressInUse || retry >= retries) {
      ov_err("ov_sock_pair: %s() error %d", failed.name, failed.code);
      return failed.code;
    }
    ov_log("ov_sock_pair: port collision in %s().  Retrying (%d of %d)", failed.name, retry + 1,
           retries);
    maker.pause(pause);
    pause += kPauseGrowth;
  }
}

}  // namespace ov
