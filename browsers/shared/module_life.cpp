#include "browsers/shared/module_life.h"

#include <exception>
#include <mutex>

#include "browsers/shared/plugin_log.h"
#include "runtime/ov_log.h"
#include "runtime/ov_time.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web {

namespace {

std::mutex
    lifeMutex;  // guards starts, and held while the first start and the last end do their work
int starts = 0;

}  // namespace

void startModule() noexcept {
  const std::lock_guard<std::mutex> lock(lifeMutex);
  if (starts++ != 0) return;
  try {
    ov_time_init();
    openPluginLog();
  } catch (const std::exception&) {
    // Without a log there is nobody to tell.
  }
  // The module is the control's, whichever face has asked first.
  ov_log("\n\nInitializing Orvane Web ActiveX plugin\n");
  RunnableScheduler::init();
}

void endModule() noexcept {
  const std::lock_guard<std::mutex> lock(lifeMutex);
  if (starts == 0 || --starts != 0) return;
  RunnableScheduler::cleanup();
  ov_log("Shutting down Orvane Web ActiveX plugin");
  closePluginLog();
}

}  // namespace Vantrel::Web
