// The browser's queue of NPN_PluginThreadAsyncCall: any thread adds, the browser's thread runs. The
// queue can hold calls back or drop them; both are told apart in its counts.
#pragma once

#include <deque>
#include <mutex>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Host {

class AsyncCalls {
 public:
  enum class Mode {
    kQueue,  // run() runs them
    kHold,   // kept until the mode changes
    kDrop,   // forgotten at once
  };

  // Any thread.
  void add(NPP npp, NPAsyncCallFunction function, void* argument);

  // The rest: browser's thread only.
  void setMode(Mode mode);
  // Runs what is queued now, each outside the lock. Returns how many ran.
  int run();
  // Runs at most one.
  bool runOne();
  // Forgets the calls of an instance, as browsers do when it ends. Returns how many.
  int dropCallsOf(NPP npp);

  int waiting() const;
  int waiting(NPP npp) const;
  int received() const;
  int dropped() const;

 private:
  struct Call {
    NPP npp;
    NPAsyncCallFunction function;
    void* argument;
  };

  mutable std::mutex mutex_;  // guards everything below
  Mode mode_ = Mode::kQueue;
  std::deque<Call> calls_;
  int received_ = 0;
  int dropped_ = 0;
};

}  // namespace Vantrel::Web::Host
