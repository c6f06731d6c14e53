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

constexpr ov_rc timed_out = 10060;

void run_threads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

// With or without a condition, and so with and without the kernel's mutex.
class StressTest : public testing::TestWithParam<bool> {
 protected:
  StressTest() {
    ov_mutex_init(&mutex);
    ov_mutex_init_recursive(&recursive);
    if (GetParam()) ov_cond_init(&condition, &mutex);
    if (GetParam()) ov_cond_init(&recursive_condition, &recursive);
  }
  ~StressTest() override {
    if (GetParam()) ov_cond_destroy(&condition);
    if (GetParam()) ov_cond_destroy(&recursive_condition);
    EXPECT_EQ(0, ov_mutex_destroy(&mutex));
    EXPECT_EQ(0, ov_mutex_destroy(&recursive));
  }
  ov_mutex mutex, recursive;
  ov_cond condition, recursive_condition;
};
INSTANTIATE_TEST_SUITE_P(BeforeAndAfterTheSwitch, StressTest, testing::Bool());

TEST_P(StressTest, WaitingAndTryingThreadsExcludeEachOther) {
  constexpr int thread_count = 12;
  constexpr int rounds = 1000;
  int inside = 0;
  int64_t total = 0;
  std::atomic<int64_t> entered = 0;
  run_threads(thread_count, [&](int number) {
    for (int i = 0; i < rounds; ++i) {
      const bool tries = (number + i) % 3 == 0;
      const ov_rc result = tries ? ov_mutex_acquire_nb(&mutex) : ov_mutex_acquire(&mutex);
      if (result != 0) {
        ASSERT_TRUE(tries);
        continue;
      }
      ASSERT_EQ(1, ++inside);
      ASSERT_EQ(ov_thread_self(), mutex.owner);
      ++total;
      --inside;
      ++entered;
      ASSERT_EQ(0, ov_mutex_release(&mutex));
    }
  });
  EXPECT_EQ(entered, total);
  EXPECT_LE(thread_count * (rounds * 2 / 3 - 1), total);
  EXPECT_EQ(0U, mutex.owner);
}

TEST_P(StressTest, RecursiveHoldersOfManyDepthsExcludeEachOther) {
  int64_t total = 0;
  run_threads(8, [&](int number) {
    for (int i = 0; i < 300; ++i) {
      const int depth = (number + i) % 5 + 1;
      for (int d = 0; d < depth; ++d) ASSERT_EQ(0, ov_mutex_acquire(&recursive));
      const int64_t before = total;
      std::this_thread::yield();
      ASSERT_EQ(before, total);
      total = before + depth;
      for (int d = 0; d < depth; ++d) ASSERT_EQ(0, ov_mutex_release(&recursive));
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
    ov_mutex_init(&mutex);
    ov_cond_init(&first, &mutex);
    ov_cond_init(&second, &mutex);
  }
  ~StressConditionTest() override {
    EXPECT_EQ(0, first.waiters);
    EXPECT_EQ(0, second.waiters);
    ov_cond_destroy(&first);
    ov_cond_destroy(&second);
    EXPECT_EQ(0, ov_mutex_destroy(&mutex));
  }
  ov_mutex mutex;
  ov_cond first, second;
};

TEST_F(StressConditionTest, BoundedQueueWithTwoConditionsLosesNothing) {
  constexpr int pairs = 4;
  constexpr int each = 400;
  constexpr size_t room = 3;
  std::deque<int> queue;
  std::vector<int> seen(pairs * each);
  int left = pairs * each;
  run_threads(2 * pairs, [&](int number) {
    if (number < pairs) {
      for (int i = 0; i < each; ++i) {
        ov_mutex_acquire(&mutex);
        while (queue.size() >= room) ov_cond_wait(&first);
        queue.push_back(number * each + i);
        ov_mutex_release(&mutex);
        ov_cond_signal(&second);
      }
      return;
    }
    ov_mutex_acquire(&mutex);
    while (left > 0) {
      if (queue.empty()) {
        ov_cond_timedwait_ms(&second, number % 2 == 0 ? 2 : 50);
        continue;
      }
      ++seen[static_cast<size_t>(queue.front())];
      queue.pop_front();
      --left;
      ov_cond_signal(&first);
    }
    ov_mutex_release(&mutex);
  });
  for (const int count : seen) ASSERT_EQ(1, count);
}

TEST_F(StressConditionTest, BarrierOfBroadcastsKeepsAllInStep) {
  constexpr int thread_count = 10;
  constexpr int rounds = 120;
  int arrived = 0;
  int round = 0;
  std::atomic<int> in_round = 0;
  run_threads(thread_count, [&](int number) {
    for (int i = 0; i < rounds; ++i) {
      ++in_round;
      ov_mutex_acquire(&mutex);
      ASSERT_EQ(i, round);
      if (++arrived == thread_count) {
        ASSERT_EQ(thread_count * (i + 1), in_round);
        arrived = 0;
        ++round;
        // By turns under the mutex and without it.
        if (i % 2 == 0) ov_cond_signal_all(&first);
        ov_mutex_release(&mutex);
        if (i % 2 != 0) ov_cond_signal_all(&first);
        continue;
      }
      while (round == i) {
        if (number % 3 == 0) {
          ov_cond_timedwait_ms(&first, 20);
        } else {
          ov_cond_wait(&first);
        }
        ASSERT_EQ(ov_thread_self(), mutex.owner);
      }
      ov_mutex_release(&mutex);
    }
  });
  EXPECT_EQ(rounds, round);
}

TEST_F(StressConditionTest, TimedWaitsRunOutBesideSignalsAndBroadcasts) {
  constexpr int waiters = 8;
  bool stop = false;
  std::atomic<int> woken = 0;
  std::atomic<int> ran_out = 0;
  run_threads(waiters + 2, [&](int number) {
    if (number >= waiters) {
      for (int i = 0; i < 400; ++i) {
        if (i % 4 == 0) ov_thread_sleep(1);
        EXPECT_EQ(0, i % 2 == 0 ? ov_cond_signal(&first) : ov_cond_signal_all(&first));
      }
      // Until somebody has seen each of the two.
      while (woken == 0 || ran_out == 0) {
        ov_thread_sleep(5);
        ov_cond_signal(&first);
      }
      ov_mutex_acquire(&mutex);
      stop = true;
      ov_cond_signal_all(&first);
      ov_mutex_release(&mutex);
      return;
    }
    ov_mutex_acquire(&mutex);
    while (!stop) {
      const ov_rc result = ov_cond_timedwait_ms(&first, number % 3);
      ASSERT_TRUE(result == 0 || result == timed_out) << result;
      ++(result == 0 ? woken : ran_out);
      ASSERT_EQ(ov_thread_self(), mutex.owner);
    }
    ov_mutex_release(&mutex);
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
