#include "threads/runnable_scheduler.h"

#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "runtime/ov_log.h"
#include "threads/guarded.h"
#include "threads/modal_scope.h"

namespace Vantrel::Web {

namespace {

struct RunnablePair {
  std::unique_ptr<Runnable> runnable;
  std::unique_ptr<Callback> callback;
};

struct Pending {
  uint64_t owner;      // the id of its OneShotManager
  RunnablePair* pair;  // owned by the posted message, or by the record once a post has failed
};

using PendingRecord = std::multimap<Runnable*, Pending>;

// Static like the record, so that both are there before init and after cleanup.
std::mutex pendingMutex;  // guards the record

// Made by the first work and never destroyed: the module may be unloaded while work is still named
// here. No local static, whose making leaves handles of the C++ runtime behind at an unload.
PendingRecord* record = nullptr;

PendingRecord& pending() {
  if (record == nullptr) record = new PendingRecord;
  return *record;
}

bool isPending(Runnable* runnable) {
  const std::lock_guard<std::mutex> lock(pendingMutex);
  return pending().contains(runnable);
}

}  // namespace

void RunnableScheduler::init() {
  OV_DEBUG("RunnableScheduler::init()");
}

void RunnableScheduler::cleanup() {
  OV_DEBUG("RunnableScheduler::cleanup()");
}

void RunnableScheduler::scheduleRunnable(OneShotManager* oneShotManager,
                                         std::unique_ptr<Runnable> runnable,
                                         std::unique_ptr<Callback> callback) {
  OV_DEBUG("RunnableScheduler::scheduleRunnable()");
  Runnable* const key = runnable.get();
  auto owner =
      std::make_unique<RunnablePair>(RunnablePair{std::move(runnable), std::move(callback)});
  {
    const std::lock_guard<std::mutex> lock(pendingMutex);
    pending().emplace(key, Pending{oneShotManager->id(), owner.get()});
  }
  // From here on nothing is freed but by its message: when the post fails, the entry stays, and so
  // does what it names.
  RunnablePair* const pair = owner.release();
  oneShotManager->scheduleAsyncCallback(handleRunnablePair, pair);
}

void RunnableScheduler::handleRunnablePair(void* argument) {
  const ModalScope scope;
  OV_DEBUG("RunnableScheduler - handleRunnablePair()");
  const std::unique_ptr<RunnablePair> pair(static_cast<RunnablePair*>(argument));
  Runnable* const runnable = pair->runnable.get();
  guarded([&pair, runnable] {
    runnable->run();
    if (pair->callback && !runnable->stopped()) pair->callback->handleCallback(runnable);
  });
  pair->callback.reset();
  const std::lock_guard<std::mutex> lock(pendingMutex);
  pending().erase(runnable);
}

void RunnableScheduler::stopRunnables(OneShotManager* oneShotManager) {
  ModalScope::instanceEnds();
  std::vector<Runnable*> own;
  {
    const std::lock_guard<std::mutex> lock(pendingMutex);
    const size_t size = record == nullptr ? 0 : record->size();
    OV_DEBUG("RunnableScheduler::stopRunnables() - osm=%p; size=%i",
             static_cast<void*>(oneShotManager), static_cast<int>(size));
    if (size == 0) return;
    for (const auto& [runnable, entry] : pending()) {
      if (entry.owner == oneShotManager->id()) own.push_back(runnable);
    }
  }
  for (Runnable* const runnable : own) {
    // A stop may let windows work, and so end another one of these.
    if (!isPending(runnable)) continue;
    OV_DEBUG("RunnableScheduler::stopRunnables() - stopping %p", static_cast<void*>(runnable));
    guarded([runnable] { runnable->stop(); });
  }
}

}  // namespace Vantrel::Web
