// Hands a function with an argument to the browser's thread from any thread. One per plug-in
// instance, made and destroyed on the browser's thread by its front end, which owns it.
#pragma once

#include <cstdint>
#include <memory>

#include "threads/win_message_window.h"

namespace Vantrel::Web {

class OneShotManager {
 public:
  // Throws std::runtime_error if the hidden window cannot be made.
  OneShotManager();
  ~OneShotManager();
  OneShotManager(const OneShotManager&) = delete;
  OneShotManager& operator=(const OneShotManager&) = delete;

  // The function runs once, when the browser's message loop next turns, unless this object goes
  // first. Throws std::runtime_error if it cannot be handed over; the argument stays the caller's.
  void scheduleAsyncCallback(AsyncFunction function, void* argument);

  // Never given out again, unlike an address: what a gone instance has left pending is not taken
  // for a later one's.
  uint64_t id() const { return id_; }

 private:
  const uint64_t id_;
  std::unique_ptr<WinMessageWindow> messageWindow_;  // null when memory ran out
};

}  // namespace Vantrel::Web
