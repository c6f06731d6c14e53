#include "runtime/ov_threads.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <thread>
#include <vector>

namespace {

class ConditionTest : public ::testing::Test {
 protected:
  ConditionTest() {
    ov_mutex_init(&mutex_);
    ov_cond_init(&condition_, &mutex_);
  }
  ~ConditionTest() override {
    EXPECT_EQ(0, ov_cond_destroy(&condition_));
    EXPECT_EQ(0, ov_mutex_destroy(&mutex_));
  }
  void acquire() { ASSERT_EQ(0, ov_mutex_acquire(&mutex_)); }
  void release() { ASSERT_EQ(0, ov_mutex_release(&mutex_)); }

  ov_mutex mutex_;
  ov_cond condition_;
};

TEST_F(ConditionTest, TimedWaitRunsOutWithTheMutexHeld) {
  acquire();
  const int32_t limit[2] = {0, 20000};
  EXPECT_EQ(10060, ov_cond_timedwait(&condition_, limit));
  EXPECT_EQ(ov_thread_self(), mutex_.owner);
  EXPECT_EQ(10060, ov_cond_timedwait_ms(&condition_, 0));
  EXPECT_EQ(ov_thread_self(), mutex_.owner);
  release();
}

TEST_F(ConditionTest, MillisecondsAreSplitIntoSecondsAndMicroseconds) {
  acquire();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(10060, ov_cond_timedwait_ms(&condition_, 1500));
  const auto spent = std::chrono::steady_clock::now() - start;
  // Only the lower bound: a busy machine may be late, never early.
  EXPECT_GE(spent, std::chrono::milliseconds(1490));
  release();
}

TEST_F(ConditionTest, SignalWithoutAWaiterIsNotRemembered) {
  EXPECT_EQ(0, ov_cond_signal(&condition_));
  EXPECT_EQ(0, ov_cond_signal_all(&condition_));
  acquire();
  EXPECT_EQ(10060, ov_cond_timedwait_ms(&condition_, 20));
  release();
}

TEST_F(ConditionTest, WaitsWithoutLimitEndByASignal) {
  for (const int kind : {0, 1, 2}) {
    bool ready = false;
    std::thread waiter([&] {
      ov_mutex_acquire(&mutex_);
      while (!ready) {
        const ov_rc result = kind == 0   ? ov_cond_wait(&condition_)
                             : kind == 1 ? ov_cond_timedwait(&condition_, nullptr)
                                         : ov_cond_timedwait_ms(&condition_, -1);
        ASSERT_EQ(0, result);
        ASSERT_EQ(ov_thread_self(), mutex_.owner);
      }
      ov_mutex_release(&mutex_);
    });
    acquire();
    ready = true;
    release();
    EXPECT_EQ(0, ov_cond_signal(&condition_));
    waiter.join();
  }
}

TEST_F(ConditionTest, BroadcastWakesAll) {
  constexpr int kWaiters = 6;
  int waiting = 0;
  int woken = 0;
  bool go = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < kWaiters; ++i) {
    threads.emplace_back([&] {
      ov_mutex_acquire(&mutex_);
      ++waiting;
      while (!go) ov_cond_wait(&condition_);
      ++woken;
      ov_mutex_release(&mutex_);
    });
  }
  acquire();
  while (waiting < kWaiters) {
    release();
    ov_thread_sleep(1);
    acquire();
  }
  go = true;
  EXPECT_EQ(0, ov_cond_signal_all(&condition_));
  EXPECT_EQ(0, woken);  // the caller goes on holding the mutex
  release();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(kWaiters, woken);
}

TEST_F(ConditionTest, QueueOfManyProducersAndConsumers) {
  constexpr int kEach = 500;
  constexpr int kPairs = 3;
  std::deque<int> queue;
  int64_t sum = 0;
  int taken = 0;
  std::vector<std::thread> threads;
  for (int p = 0; p < kPairs; ++p) {
    threads.emplace_back([&, p] {
      for (int i = 0; i < kEach; ++i) {
        ov_mutex_acquire(&mutex_);
        queue.push_back(i);
        // Each of the ways to wake, with and without the mutex.
        if ((i + p) % 3 == 0) ov_cond_signal_all(&condition_);
        ov_mutex_release(&mutex_);
        if ((i + p) % 3 == 1) ov_cond_signal(&condition_);
        if ((i + p) % 3 == 2) ov_cond_signal_all(&condition_);
      }
    });
    threads.emplace_back([&, p] {
      ov_mutex_acquire(&mutex_);
      while (taken < kPairs * kEach) {
        if (queue.empty()) {
          if (p == 0) {
            ov_cond_timedwait_ms(&condition_, 1);
          } else {
            ov_cond_wait(&condition_);
          }
          continue;
        }
        sum += queue.front();
        queue.pop_front();
        if (++taken == kPairs * kEach) ov_cond_signal_all(&condition_);
      }
      ov_mutex_release(&mutex_);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(int64_t{kPairs} * kEach * (kEach - 1) / 2, sum);
}

}  // namespace
