#include "bridge.h"

namespace engine {

void Bridge::attach(Side side, Closure wake, std::function<void(const Closure&)> guard) {
  const std::lock_guard lock(mutex_);
  thread(side).id = std::this_thread::get_id();
  thread(side).wake = std::move(wake);
  thread(side).guard = std::move(guard);
}

void Bridge::detach(Side side) {
  const std::lock_guard lock(mutex_);
  thread(side).wake = nullptr;
}

bool Bridge::isOn(Side side) const {
  const std::lock_guard lock(mutex_);
  return (side == Side::kPlugin ? plugin_ : engine_).id == std::this_thread::get_id();
}

void Bridge::serve(Side side) {
  std::unique_lock lock(mutex_);
  while (runNext(thread(side), lock)) {
  }
}

bool Bridge::runNext(Thread& own, std::unique_lock<std::mutex>& lock) {
  if (own.jobs.empty()) return false;
  Job* job = own.jobs.front();
  own.jobs.pop_front();
  lock.unlock();
  if (own.guard)
    own.guard(job->run);
  else
    job->run();
  lock.lock();
  job->done = true;
  (&own == &plugin_ ? engine_ : plugin_).changed.notify_all();
  return true;
}

void Bridge::runOn(Side to, Closure run) {
  Job job{std::move(run)};
  std::unique_lock lock(mutex_);
  Thread& target = thread(to);
  Thread& own = other(to);
  if (!target.wake) return;
  target.jobs.push_back(&job);
  if (target.blocked)
    target.changed.notify_all();
  else
    target.wake();
  while (!job.done) {
    if (runNext(own, lock)) continue;
    own.blocked = true;
    own.changed.wait(lock);
    own.blocked = false;
  }
  // Queued while this thread was waking up to its own call's end: left to the event loop.
  if (!own.jobs.empty() && own.wake) own.wake();
}

Bridge& bridge() {
  static Bridge instance;
  return instance;
}

}  // namespace engine
