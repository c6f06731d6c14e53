#include "threads/runnable_scheduler.h"

#include <exception>
#include <map>
#include <mutex>

#include "runtime/ov_log.h"
#include "threads/mutex.h"

namespace Vantrel::Web {

namespace {

struct RunnablePair {
  std::unique_ptr<Runnable> runnable;
  std::unique_ptr<Callback> callback;
};

std::unique_ptr<Mutex> schedulerMutex;  // exists between init and cleanup; guards pending
std::multimap<Runnable*, OneShotManager*> pending;

}  // namespace

void RunnableScheduler::init() {
  OV_DEBUG("RunnableScheduler::init()");
  if (!schedulerMutex) schedulerMutex = std::make_unique<Mutex>();
}

void RunnableScheduler::cleanup() {
  OV_DEBUG("RunnableScheduler::cleanup()");
  schedulerMutex.reset();
}

void RunnableScheduler::scheduleRunnable(OneShotManager* oneShotManager,
                                         std::unique_ptr<Runnable> runnable,
                                         std::unique_ptr<Callback> callback) {
  OV_DEBUG("RunnableScheduler::scheduleRunnable()");
  {
    const std::lock_guard<Mutex> lock(*schedulerMutex);
    pending.emplace(runnable.get(), oneShotManager);
  }
  auto pair =
      std::make_unique<RunnablePair>(RunnablePair{std::move(runnable), std::move(callback)});
  try {
    oneShotManager->scheduleAsyncCallback(handleRunnablePair, pair.get());
  } catch (...) {
    // The entry stays in the record, so what it names stays alive.
    static_cast<void>(pair.release());
    throw;
  }
  static_cast<void>(pair.release());
}

void RunnableScheduler::handleRunnablePair(void* argument) {
  OV_DEBUG("RunnableScheduler - handleRunnablePair()");
  const std::unique_ptr<RunnablePair> pair(static_cast<RunnablePair*>(argument));
  Runnable* const runnable = pair->runnable.get();
  try {
    runnable->run();
    if (pair->callback && !runnable->stopped()) pair->callback->handleCallback(runnable);
    pair->callback.reset();
  } catch (const std::exception& exception) {
    // The window procedure that called us must not see it.
    ov_err("%s", exception.what());
  }
  const std::lock_guard<Mutex> lock(*schedulerMutex);
  pending.erase(runnable);
}

void RunnableScheduler::stopRunnables(OneShotManager* oneShotManager) {
  const std::lock_guard<Mutex> lock(*schedulerMutex);
  OV_DEBUG("RunnableScheduler::stopRunnables() - osm=%p; size=%i",
           static_cast<void*>(oneShotManager), static_cast<int>(pending.size()));
  for (const auto& [runnable, owner] : pending) {
    if (owner != oneShotManager) continue;
    OV_DEBUG("RunnableScheduler::stopRunnables() - stopping %p", static_cast<void*>(runnable));
    runnable->stop();
  }
}

}  // namespace Vantrel::Web
