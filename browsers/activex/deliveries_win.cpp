#include "browsers/activex/deliveries_win.h"

#include <mutex>
#include <stdexcept>
#include <utility>

#include "browsers/activex/module_count_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

void Deliveries::post(std::unique_ptr<Delivery> delivery) {
  const std::lock_guard<Mutex> lock(mutex_);
  try {
    if (manager_ == nullptr) throw std::runtime_error("No way to the page");
    manager_->scheduleAsyncCallback(run, this);
  } catch (const std::exception&) {
    discarded_.push_back(std::move(delivery));
    throw;
  }
  // Its turn cannot have come: it waits for the lock.
  waiting_.push_back(std::move(delivery));
}

void Deliveries::discard(std::unique_ptr<Delivery> delivery) {
  if (GetCurrentThreadId() == thread_) return;  // which destroys it
  const std::lock_guard<Mutex> lock(mutex_);
  discarded_.push_back(std::move(delivery));
}

void Deliveries::setManager(OneShotManager* manager) {
  const std::lock_guard<Mutex> lock(mutex_);
  manager_ = manager;
}

std::unique_ptr<Delivery> Deliveries::take() {
  const std::lock_guard<Mutex> lock(mutex_);
  if (waiting_.empty()) return nullptr;
  std::unique_ptr<Delivery> next = std::move(waiting_.front());
  waiting_.pop_front();
  return next;
}

void Deliveries::run(void* argument) {
  // The control may go in here, and the library is not to follow before this returns.
  const ModuleReference moduleReference;
  auto* const self = static_cast<Deliveries*>(argument);
  const std::weak_ptr<bool> alive = self->lifeToken_;
  do {
    std::unique_ptr<Delivery> delivery = self->take();
    if (!delivery) return;
    guarded([&delivery] { delivery->deliver(); });
    // What it gives back may be the last that held the control.
    delivery.reset();
  } while (!alive.expired());
}

}  // namespace Vantrel::Web::ActiveX
