#include "browsers/activex/deliveries_win.h"

#include <mutex>
#include <stdexcept>
#include <utility>

#include "browsers/activex/module_count_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

DeliveryQueue::~DeliveryQueue() {
  // One by one: a chain that is destroyed by its first would take a frame of the stack for each.
  while (take()) {
  }
}

void DeliveryQueue::put(std::unique_ptr<Delivery> delivery) noexcept {
  Delivery* const added = delivery.get();
  (last_ != nullptr ? last_->next_ : first_) = std::move(delivery);
  last_ = added;
}

std::unique_ptr<Delivery> DeliveryQueue::take() noexcept {
  std::unique_ptr<Delivery> taken = std::move(first_);
  if (!taken) return nullptr;
  first_ = std::move(taken->next_);
  if (!first_) last_ = nullptr;
  return taken;
}

void Deliveries::post(std::unique_ptr<Delivery> delivery) {
  const std::lock_guard<Mutex> lock(mutex_);
  try {
    if (manager_ == nullptr) throw std::runtime_error("No way to the page");
    manager_->scheduleAsyncCallback(run, this);
  } catch (const std::exception&) {
    keep(std::move(delivery));
    throw;
  }
  // Its turn cannot have come: it waits for the lock.
  waiting_.put(std::move(delivery));
}

void Deliveries::discard(std::unique_ptr<Delivery> delivery) {
  if (GetCurrentThreadId() == thread_) return;  // which destroys it
  const std::lock_guard<Mutex> lock(mutex_);
  keep(std::move(delivery));
}

void Deliveries::keep(std::unique_ptr<Delivery> delivery) noexcept {
  if (delivery->abandon()) discarded_.put(std::move(delivery));
}

void Deliveries::setManager(OneShotManager* manager) {
  const std::lock_guard<Mutex> lock(mutex_);
  manager_ = manager;
}

std::unique_ptr<Delivery> Deliveries::take() {
  const std::lock_guard<Mutex> lock(mutex_);
  return waiting_.take();
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
