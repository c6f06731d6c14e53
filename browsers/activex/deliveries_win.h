// What other threads have for the page, on its way to the control's thread.
//
// Owned by the control, made and destroyed on its thread. A delivery holds references on page
// objects, which only that thread may give back: whatever happens to it, it is destroyed there,
// after its turn or with the control.
#pragma once

#include <windows.h>

#include <memory>

#include "threads/mutex.h"
#include "threads/one_shot_manager.h"

namespace Vantrel::Web::ActiveX {

class Delivery {
 public:
  virtual ~Delivery() = default;
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;
  // The control's thread. May end the control.
  virtual void deliver() = 0;
  // Any thread: it will not be made, and lets go of what any thread may free. Whether something is
  // left.
  virtual bool abandon() noexcept = 0;

 protected:
  Delivery() = default;

 private:
  friend class DeliveryQueue;
  std::unique_ptr<Delivery> next_;
};

// Deliveries in their order. It takes no memory: a thread that may not destroy one can always leave
// it here.
class DeliveryQueue {
 public:
  DeliveryQueue() = default;
  ~DeliveryQueue();
  DeliveryQueue(const DeliveryQueue&) = delete;
  DeliveryQueue& operator=(const DeliveryQueue&) = delete;

  void put(std::unique_ptr<Delivery> delivery) noexcept;
  // Null when there is none.
  std::unique_ptr<Delivery> take() noexcept;

 private:
  std::unique_ptr<Delivery> first_;
  Delivery* last_ = nullptr;
};

class Deliveries {
 public:
  Deliveries() = default;
  Deliveries(const Deliveries&) = delete;
  Deliveries& operator=(const Deliveries&) = delete;

  // Any thread. Delivers in order, from the loop of the control's thread. Throws
  // std::runtime_error if there is no way there; the delivery is then discarded.
  void post(std::unique_ptr<Delivery> delivery);
  // Any thread: one that will not be made. Destroyed on the control's thread.
  void discard(std::unique_ptr<Delivery> delivery);

  // The way to the control's thread, once there is one; null ends it.
  void setManager(OneShotManager* manager);

 private:
  // Delivers all that waits; `argument` is the Deliveries, which the window never outlives.
  static void run(void* argument);
  std::unique_ptr<Delivery> take();
  // The lock is held.
  void keep(std::unique_ptr<Delivery> delivery) noexcept;

  const DWORD thread_ = GetCurrentThreadId();
  const std::shared_ptr<bool> lifeToken_ = std::make_shared<bool>(true);
  Mutex mutex_;  // guards all below; held during a post, which waits for nothing
  OneShotManager* manager_ = nullptr;
  DeliveryQueue waiting_;
  // Until the control's end: no more than a reference for each call of the page.
  DeliveryQueue discarded_;
};

}  // namespace Vantrel::Web::ActiveX
