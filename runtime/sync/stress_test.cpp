// The mutexes and conditions with many threads at once. Numbers of rounds, not times, end each
// case.
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "runtime/ov_threads.h"

namespace {

constexpr ov_rc kTimedOut = 10060;

void run_threads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

// With or without a condition, and so with and without the kernel's mutex.
class StressTest : public testing::TestWithParam<bool> {
 protected:
  StressTest() {
    ov_mutex_init(&mutex_);
    ov_mutex_init_recursive(&recursive_);
    if (GetParam()) ov_cond_init(&condition_, &mutex_);
    if (GetParam()) ov_cond_init(&recursiveCondition_, &recursive_);
  }
  ~StressTest() override {
    if (GetParam()) ov_cond_destroy(&condition_);
    if (GetParam()) ov_cond_destroy(&recursiveCondition_);
    EXPECT_EQ(0, ov_mutex_destroy(&mutex_));
    EXPECT_EQ(0, ov_mutex_destroy(&recursive_));
  }
  ov_mutex mutex_, recursive_;
  ov_cond condition_, recursiveCondition_;
};
INSTANTIATE_TEST_SUITE_P(BeforeAndAfterTheSwitch, StressTest, testing::Bool());

TEST_P(StressTest, WaitingAndTryingThreadsExcludeEachOther) {
  constexpr int kThreadCount = 12;
  constexpr int kRounds = 1000;
  int inside = 0;
  int64_t total = 0;
  std::atomic<int64_t> entered = 0;
  run_threads(kThreadCount, [&](int number) {
    for (int i = 0; i < kRounds; ++i) {
      const bool tries = (number + i) % 3 == 0;
      const ov_rc result = tries ? ov_mutex_acquire_nb(&mutex_) : ov_mutex_acquire(&mutex_);
      if (result != 0) {
        ASSERT_TRUE(tries);
        continue;
      }
      ASSERT_EQ(1, ++inside);
      ASSERT_EQ(ov_thread_self(), mutex_.owner);
      ++total;
      --inside;
      ++entered;
      ASSERT_EQ(0, ov_mutex_release(&mutex_));
    }
  });
  EXPECT_EQ(entered, total);
  EXPECT_LE(kThreadCount * (kRounds * 2 / 3 - 1), total);
  EXPECT_EQ(0U, mutex_.owner);
}

TEST_P(StressTest, RecursiveHoldersOfManyDepthsExcludeEachOther) {
  int64_t total = 0;
  run_threads(8, [&](int number) {
    for (int i = 0; i < 300; ++i) {
      const int depth = (number + i) % 5 + 1;
      for (int d = 0; d < depth; ++d) ASSERT_EQ(0, ov_mutex_acquire(&recursive_));
      const int64_t before = total;
      std::this_thread::yield();
      ASSERT_EQ(before, total);
      total = before + depth;
      for (int d = 0; d < depth; ++d) ASSERT_EQ(0, ov_mutex_release(&recursive_));
    }
  });
  int64_t expected = 0;
  for (int number = 0; number < 8; ++number) {
    for (int i = 0; i < 300; ++i) expected += (number + i) % 5 + 1;
  }
  EXPECT_EQ(expected, total);
}

TEST(StressSwitchTest, MutexInUseIsSwitchedByAThreadThatDoesNotHoldIt) {
  for (int round = 0; round < 40; ++round) {
    ov_mutex mutex;
    ov_cond condition;
    ov_mutex_init(&mutex);
    int64_t total = 0;
    run_threads(7, [&](int number) {
      if (number == 6) {
        ASSERT_EQ(0, ov_cond_init(&condition, &mutex));
        return;
      }
      for (int i = 0; i < 60; ++i) {
        ASSERT_EQ(0, ov_mutex_acquire(&mutex));
        ++total;
        ASSERT_EQ(0, ov_mutex_release(&mutex));
      }
    });
    EXPECT_EQ(360, total);
    EXPECT_EQ(0, ov_cond_destroy(&condition));
    EXPECT_EQ(0, ov_mutex_destroy(&mutex));
  }
}

class StressConditionTest : public testing::Test {
 protected:
  StressConditionTest() {
    ov_mutex_init(&mutex_);
    ov_cond_init(&first_, &mutex_);
    ov_cond_init(&second_, &mutex_);
  }
  ~StressConditionTest() override {
    EXPECT_EQ(0, first_.waiters);
    EXPECT_EQ(0, second_.waiters);
    ov_cond_destroy(&first_);
    ov_cond_destroy(&second_);
    EXPECT_EQ(0, ov_mutex_destroy(&mutex_));
  }
  ov_mutex mutex_;
  ov_cond first_, second_;
};

TEST_F(StressConditionTest, BoundedQueueWithTwoConditionsLosesNothing) {
  constexpr int kPairs = 4;
  constexpr int kEach = 400;
  constexpr size_t kRoom = 3;
  std::deque<int> queue;
  std::vector<int> seen(size_t{kPairs} * kEach);
  int left = kPairs * kEach;
  run_threads(2 * kPairs, [&](int number) {
    if (number < kPairs) {
      for (int i = 0; i < kEach; ++i) {
        ov_mutex_acquire(&mutex_);
        while (queue.size() >= kRoom) ov_cond_wait(&first_);
        queue.push_back(number * kEach + i);
        ov_mutex_release(&mutex_);
        ov_cond_signal(&second_);
      }
      return;
    }
    ov_mutex_acquire(&mutex_);
    while (left > 0) {
      if (queue.empty()) {
        ov_cond_timedwait_ms(&second_, number % 2 == 0 ? 2 : 50);
        continue;
      }
      ++seen[static_cast<size_t>(queue.front())];
      queue.pop_front();
      --left;
      ov_cond_signal(&first_);
    }
    ov_mutex_release(&mutex_);
  });
  for (const int count : seen) ASSERT_EQ(1, count);
}

TEST_F(StressConditionTest, BarrierOfBroadcastsKeepsAllInStep) {
  constexpr int kThreadCount = 10;
  constexpr int kRounds = 120;
  int arrived = 0;
  int round = 0;
  std::atomic<int> in_round = 0;
  run_threads(kThreadCount, [&](int number) {
    for (int i = 0; i < kRounds; ++i) {
      ++in_round;
      ov_mutex_acquire(&mutex_);
      ASSERT_EQ(i, round);
      if (++arrived == kThreadCount) {
        ASSERT_EQ(kThreadCount * (i + 1), in_round);
        arrived = 0;
        ++round;
        // By turns under the mutex and without it.
        if (i % 2 == 0) ov_cond_signal_all(&first_);
        ov_mutex_release(&mutex_);
        if (i % 2 != 0) ov_cond_signal_all(&first_);
        continue;
      }
      while (round == i) {
        if (number % 3 == 0) {
          ov_cond_timedwait_ms(&first_, 20);
        } else {
          ov_cond_wait(&first_);
        }
        ASSERT_EQ(ov_thread_self(), mutex_.owner);
      }
      ov_mutex_release(&mutex_);
    }
  });
  EXPECT_EQ(kRounds, round);
}

TEST_F(StressConditionTest, TimedWaitsRunOutBesideSignalsAndBroadcasts) {
  constexpr int kWaiters = 8;
  bool stop = false;
  std::atomic<int> woken = 0;
  std::atomic<int> ran_out = 0;
  run_threads(kWaiters + 2, [&](int number) {
    if (number >= kWaiters) {
      for (int i = 0; i < 400; ++i) {
        if (i % 4 == 0) ov_thread_sleep(1);
        EXPECT_EQ(0, i % 2 == 0 ? ov_cond_signal(&first_) : ov_cond_signal_all(&first_));
      }
      // Until somebody has seen each of the two.
      while (woken == 0 || ran_out == 0) {
        ov_thread_sleep(5);
        ov_cond_signal(&first_);
      }
      ov_mutex_acquire(&mutex_);
      stop = true;
      ov_cond_signal_all(&first_);
      ov_mutex_release(&mutex_);
      return;
    }
    ov_mutex_acquire(&mutex_);
    while (!stop) {
      const ov_rc result = ov_cond_timedwait_ms(&first_, number % 3);
      ASSERT_TRUE(result == 0 || result == kTimedOut) << result;
      ++(result == 0 ? woken : ran_out);
      ASSERT_EQ(ov_thread_self(), mutex_.owner);
    }
    ov_mutex_release(&mutex_);
  });
  EXPECT_LT(0, woken);
  EXPECT_LT(0, ran_out);
}

TEST(StressThreadTest, ThreadsComeAndGo) {
  std::atomic<int> runs = 0;
  run_threads(4, [&runs](int) {
    for (int i = 0; i < 100; ++i) {
      ov_thread thread;
      const auto work = [](void* argument) -> decltype(ov_thread_fn{}(nullptr)) {
        ++*static_cast<std::atomic<int>*>(argument);
        return 0;
      };
      ASSERT_EQ(0, ov_thread_spawn(&thread, work, &runs));
      ASSERT_EQ(0, ov_thread_join(&thread));
    }
  });
  EXPECT_EQ(400, runs);
}

}  // namespace
