// What becomes of a delivery that cannot be posted, and the queue that keeps it.
#include "browsers/activex/deliveries_win.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace Vantrel::Web::ActiveX {
namespace {

// Where a delivery ended: in order, the number and whether that was on the test's thread.
struct Ends {
  const std::thread::id thread = std::this_thread::get_id();
  std::vector<std::pair<int, bool>> all;
};

class NumberedDelivery final : public Delivery {
 public:
  NumberedDelivery(Ends& ends, int number, bool holdsPageObject)
      : ends_(ends), number_(number), holdsPageObject_(holdsPageObject) {}
  ~NumberedDelivery() override {
    ends_.all.emplace_back(number_, std::this_thread::get_id() == ends_.thread);
  }
  NumberedDelivery(const NumberedDelivery&) = delete;
  NumberedDelivery& operator=(const NumberedDelivery&) = delete;

  void deliver() override {}
  bool abandon() noexcept override { return holdsPageObject_; }
  int number() const { return number_; }

 private:
  Ends& ends_;
  const int number_;
  const bool holdsPageObject_;
};

std::unique_ptr<Delivery> made(Ends& ends, int number, bool holdsPageObject = true) {
  return std::make_unique<NumberedDelivery>(ends, number, holdsPageObject);
}

using Order = std::vector<std::pair<int, bool>>;

TEST(Deliveries, WhatCannotBePostedGoesAtOnceUnlessItHoldsAPageObject) {
  Ends ends;
  {
    Deliveries deliveries;
    std::thread worker([&] {
      EXPECT_THROW(deliveries.post(made(ends, 1, false)), std::runtime_error);
      EXPECT_THROW(deliveries.post(made(ends, 2)), std::runtime_error);
      EXPECT_THROW(deliveries.post(made(ends, 3, false)), std::runtime_error);
    });
    worker.join();
    EXPECT_EQ(ends.all, (Order{{1, false}, {3, false}}));
  }
  EXPECT_EQ(ends.all, (Order{{1, false}, {3, false}, {2, true}}));
}

TEST(Deliveries, OneThatIsDiscardedByAnotherThreadEndsOnItsOwn) {
  Ends ends;
  {
    Deliveries deliveries;
    std::thread worker([&] { deliveries.discard(made(ends, 1)); });
    worker.join();
    EXPECT_TRUE(ends.all.empty());
    deliveries.discard(made(ends, 2));
    EXPECT_EQ(ends.all, (Order{{2, true}}));
  }
  EXPECT_EQ(ends.all, (Order{{2, true}, {1, true}}));
}

TEST(DeliveryQueue, GivesThemInTheirOrder) {
  Ends ends;
  DeliveryQueue queue;
  EXPECT_EQ(queue.take(), nullptr);
  for (int number = 1; number <= 3; ++number) queue.put(made(ends, number));
  for (int number = 1; number <= 2; ++number) {
    EXPECT_EQ(dynamic_cast<NumberedDelivery&>(*queue.take()).number(), number);
  }
  queue.put(made(ends, 4));
  for (int number = 3; number <= 4; ++number) {
    EXPECT_EQ(dynamic_cast<NumberedDelivery&>(*queue.take()).number(), number);
  }
  EXPECT_EQ(queue.take(), nullptr);
}

TEST(DeliveryQueue, ALongOneEndsWithoutDepth) {
  constexpr int kMany = 200000;
  Ends ends;
  {
    DeliveryQueue queue;
    for (int number = 0; number < kMany; ++number) queue.put(made(ends, number));
  }
  ASSERT_EQ(ends.all.size(), static_cast<size_t>(kMany));
  EXPECT_EQ(ends.all.front().first, 0);
  EXPECT_EQ(ends.all.back().first, kMany - 1);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
