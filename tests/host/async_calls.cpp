#include "tests/host/async_calls.h"

#include <algorithm>

namespace Vantrel::Web::Host {

void AsyncCalls::add(NPP npp, NPAsyncCallFunction function, void* argument) {
  const std::lock_guard<std::mutex> guard(mutex_);
  ++received_;
  if (mode_ == Mode::kDrop) {
    ++dropped_;
  } else {
    calls_.push_back({npp, function, argument});
  }
}

void AsyncCalls::setMode(Mode mode) {
  const std::lock_guard<std::mutex> guard(mutex_);
  mode_ = mode;
}

int AsyncCalls::run() {
  int count = 0;
  for (int left = waiting(); left > 0 && runOne(); --left) ++count;
  return count;
}

bool AsyncCalls::runOne() {
  Call call{};
  {
    const std::lock_guard<std::mutex> guard(mutex_);
    if (mode_ == Mode::kHold || calls_.empty()) return false;
    call = calls_.front();
    calls_.pop_front();
  }
  call.function(call.argument);
  return true;
}

int AsyncCalls::dropCallsOf(NPP npp) {
  const std::lock_guard<std::mutex> guard(mutex_);
  const auto count =
      static_cast<int>(std::erase_if(calls_, [npp](const Call& call) { return call.npp == npp; }));
  dropped_ += count;
  return count;
}

int AsyncCalls::waiting() const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return static_cast<int>(calls_.size());
}

int AsyncCalls::waiting(NPP npp) const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return static_cast<int>(std::count_if(calls_.begin(), calls_.end(),
                                        [npp](const Call& call) { return call.npp == npp; }));
}

int AsyncCalls::received() const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return received_;
}

int AsyncCalls::dropped() const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return dropped_;
}

}  // namespace Vantrel::Web::Host
