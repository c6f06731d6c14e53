// Runs Runnables from the browser's message loop and keeps record of what is pending, so that an
// instance can stop its own work when it goes. Process-wide; used on the browser's thread only. Its
// lock guards the record and is held neither while a Runnable runs nor while one is stopped.
#pragma once

#include <memory>

#include "threads/callback.h"
#include "threads/one_shot_manager.h"
#include "threads/runnable.h"

namespace Vantrel::Web {

class RunnableScheduler {
 public:
  // Told in the log only: the record and its lock are always there. A dialog further up the stack
  // still unwinds through its record when the module has ended.
  static void init();
  static void cleanup();

  // Runs `runnable` from a later turn of the message loop, then hands it to `callback` (may be
  // null) unless it was stopped. Throws std::runtime_error if it cannot be handed over; the record
  // then keeps both for good.
  static void scheduleRunnable(OneShotManager* oneShotManager, std::unique_ptr<Runnable> runnable,
                               std::unique_ptr<Callback> callback);

  // Stops all pending work of that instance. What runs further up the stack unwinds by itself.
  static void stopRunnables(OneShotManager* oneShotManager);

 private:
  static void handleRunnablePair(void* argument);
};

}  // namespace Vantrel::Web
