// Hands closures between the two threads that make up the browser: the plug-in's thread, a Wine
// thread on which all code of the Windows library runs, and the engine's thread, a native one on
// which the page lives. A call waits for its end; while it waits, its thread serves the calls that
// come the other way, so a page function may call the plug-in that is calling it.
//
// One object for the process. attach() and serve() belong to the thread of that side; the calls
// may be made on the other side's thread only.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <type_traits>

namespace engine {

class Bridge {
 public:
  enum class Side { kPlugin, kEngine };

  // Makes the calling thread this side's thread. wake is called, on either thread, when a call
  // is queued while this side's thread is in its event loop; it must make the loop call serve().
  // Every closure is run by guard, if there is one.
  using Closure = std::function<void()>;
  void attach(Side side, Closure wake, std::function<void(const Closure&)> guard = nullptr);

  // Ends the serving of this side: calls to it return at once from now on, with a zero result.
  void detach(Side side);

  // True on the thread of that side.
  bool isOn(Side side) const;

  // Runs what is queued for this side's thread.
  void serve(Side side);

  // Runs the closure on the other thread and returns its result.
  template <typename Function>
  auto onPluginThread(Function&& function) {
    return call(Side::kPlugin, std::forward<Function>(function));
  }
  template <typename Function>
  auto onEngineThread(Function&& function) {
    return call(Side::kEngine, std::forward<Function>(function));
  }

 private:
  struct Job {
    Closure run;
    bool done = false;
  };
  struct Thread {
    std::thread::id id;
    Closure wake;
    std::function<void(const Closure&)> guard;
    std::deque<Job*> jobs;
    std::condition_variable changed;
    bool blocked = false;  // asleep in a call of its own, so no event loop runs here
  };

  template <typename Function>
  auto call(Side to, Function&& function) {
    using Result = std::invoke_result_t<Function>;
    if constexpr (std::is_void_v<Result>) {
      runOn(to, function);
    } else {
      Result result{};
      runOn(to, [&] { result = function(); });
      return result;
    }
  }

  void runOn(Side to, Closure run);
  bool runNext(Thread& own, std::unique_lock<std::mutex>& lock);
  Thread& thread(Side side) { return side == Side::kPlugin ? plugin_ : engine_; }
  Thread& other(Side side) { return side == Side::kPlugin ? engine_ : plugin_; }

  mutable std::mutex mutex_;  // guards both records and every job
  Thread plugin_;
  Thread engine_;
};

// The bridge of this process.
Bridge& bridge();

}  // namespace engine
