#include "threads/one_shot_manager.h"

#include <atomic>
#include <new>
#include <stdexcept>
#include <string>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {
std::atomic<uint64_t> lastId{0};
}

OneShotManager::OneShotManager()
    : id_(++lastId), messageWindow_(new (std::nothrow) WinMessageWindow) {
  OV_DEBUG("%p OneShotManager()", static_cast<void*>(this));
}

OneShotManager::~OneShotManager() {
  OV_DEBUG("%p ~OneShotManager()", static_cast<void*>(this));
}

void OneShotManager::scheduleAsyncCallback(AsyncFunction function, void* argument) {
  if (!messageWindow_) {
    ov_log("%p OneShotManager::scheduleAsyncCallback() - Warning: NULL _messageWindow",
           static_cast<void*>(this));
    return;
  }
  OV_DEBUG("%p OneShotManager::scheduleAsyncCallback() - hwnd=%p", static_cast<void*>(this),
           messageWindow_->handle());
  if (const uint32_t code = messageWindow_->post(function, argument)) {
    throw std::runtime_error("PostMessage failed (" + std::to_string(code) + ")");
  }
}

}  // namespace Vantrel::Web
