// A connected pair of TCP sockets on the loopback address.
#include "runtime/ov_threads.h"
#include "runtime/sockets/calls_win.h"
#include "runtime/sockets/pair.h"

namespace {

constexpr int32_t kRetries = 10;
constexpr long kAcceptMilliseconds = 5000;

ov::PairStep failed(const char* name) {
  return {name, ov::last_code()};
}

// 0 when a connection waits at the listener within the time.
ov_rc wait_connection(SOCKET listener) {
  const int ready = ov::wait_socket(listener, ov::Readiness::kReading, kAcceptMilliseconds);
  if (ready < 0) return ov::last_code();
  return ready == 0 ? WSAETIMEDOUT : 0;
}

class LoopbackPairMaker : public ov::PairMaker {
 public:
  ov::PairStep attempt(ov_sock sockets[2]) override {
    ov::OwnedSocket listener(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    if (!listener) return failed("listener socket");
    const int on = 1;
    if (setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on),
                   sizeof on)) {
      return failed("reuseaddr");
    }
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const at = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    if (bind(listener.get(), at, size)) return failed("bind");
    if (getsockname(listener.get(), at, &size)) return failed("getsockname");
    if (listen(listener.get(), 1)) return failed("listen");
    ov::OwnedSocket first(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    if (!first) return failed("0 socket");
    if (connect(first.get(), at, size)) return failed("connect");
    if (const ov_rc error = wait_connection(listener.get())) return {"select", error};
    ov::OwnedSocket second(accept(listener.get(), nullptr, nullptr));
    if (!second) return failed("accept");
    sockets[0] = first.release();
    sockets[1] = second.release();
    return {nullptr, 0};
  }
  void pause(uint32_t milliseconds) override { ov_thread_sleep(milliseconds); }
};

}  // namespace

ov_rc ov_sock_pair(ov_sock sockets[2]) {
  if (sockets == nullptr) return OV_EINVAL;
  LoopbackPairMaker maker;
  return ov::make_pair(maker, sockets, kRetries);
}
