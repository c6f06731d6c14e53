#include "runtime/ov_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// A mutex with or without a condition; every case must look the same from outside.
class ThreadsTest : public ::testing::TestWithParam<bool> {
 protected:
  ThreadsTest() {
    EXPECT_EQ(0, ov_mutex_init(&mutex_));
    if (GetParam()) {
      EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
    }
  }
  ~ThreadsTest() override {
    if (GetParam()) {
      EXPECT_EQ(0, ov_cond_destroy(&condition_));
    }
    EXPECT_EQ(0, ov_mutex_destroy(&mutex_));
  }
  ov_mutex mutex_;
  ov_cond condition_;
};
INSTANTIATE_TEST_SUITE_P(BeforeAndAfterTheSwitch, ThreadsTest, ::testing::Bool());

TEST_P(ThreadsTest, AcquireNotesTheOwner) {
  EXPECT_EQ(0U, mutex_.owner);
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(ov_thread_self(), mutex_.owner);
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
  EXPECT_EQ(0U, mutex_.owner);
  EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_));
  EXPECT_EQ(ov_thread_self(), mutex_.owner);
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
}

TEST_P(ThreadsTest, ReleaseByAnotherThreadChangesNothing) {
  ov::CapturedLog log;
  EXPECT_EQ(1, ov_mutex_release(&mutex_));
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  const uint32_t owner = mutex_.owner;
  std::thread([this] { EXPECT_EQ(1, ov_mutex_release(&mutex_)); }).join();
  EXPECT_EQ(owner, mutex_.owner);
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
  EXPECT_EQ(Messages(2, "LOG Attempt to release mutex by non-owner thread"), log.take());
}

TEST_P(ThreadsTest, TryingAHeldMutex) {
  ov::CapturedLog log;
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  std::thread([this] { EXPECT_EQ(GetParam() ? 258 : 10035, ov_mutex_acquire_nb(&mutex_)); }).join();
  EXPECT_EQ(GetParam() ? Messages{"LOG ov_mutex_acquire_nb: unknown err=258:"} : Messages{},
            log.take());
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
}

TEST_P(ThreadsTest, OnlyOneThreadIsInside) {
  int inside = 0;
  int total = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        ASSERT_EQ(0, ov_mutex_acquire(&mutex_));
        ASSERT_EQ(1, ++inside);
        ++total;
        --inside;
        ASSERT_EQ(0, ov_mutex_release(&mutex_));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(8000, total);
}

// A recursive mutex, before and after a condition is tied to it.
class RecursiveTest : public ::testing::TestWithParam<bool> {
 protected:
  RecursiveTest() {
    EXPECT_EQ(0, ov_mutex_init_recursive(&mutex_));
    EXPECT_NE(0, mutex_.recursive);
    if (GetParam()) {
      EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
    }
  }
  ~RecursiveTest() override {
    if (GetParam()) ov_cond_destroy(&condition_);
    EXPECT_EQ(0, ov_mutex_destroy(&mutex_));
  }
  ov_rc tryElsewhere() {
    ov_rc result = 0;
    std::thread([this, &result] {
      result = ov_mutex_acquire_nb(&mutex_);
      if (result == 0) ov_mutex_release(&mutex_);
    }).join();
    return result;
  }
  ov_mutex mutex_;
  ov_cond condition_;
};
INSTANTIATE_TEST_SUITE_P(BeforeAndAfterTheSwitch, RecursiveTest, ::testing::Bool());

TEST_P(RecursiveTest, IsFreeAfterAsManyReleases) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_));
  for (int i = 0; i < 4; ++i) {
    EXPECT_NE(0, tryElsewhere());
    EXPECT_EQ(0, ov_mutex_release(&mutex_));
  }
  EXPECT_EQ(0, tryElsewhere());
}

TEST_P(RecursiveTest, ReleaseOnceTooOftenIsRefused) {
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
  EXPECT_EQ(ov_thread_self(), mutex_.owner);  // the last owner stays
  EXPECT_EQ(1, ov_mutex_release(&mutex_));
  EXPECT_EQ(0, tryElsewhere());
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
}

TEST(MutexTest, CreateAndDispose) {
  ov_mutex* mutex = nullptr;
  ASSERT_EQ(0, ov_mutex_create(&mutex));
  EXPECT_EQ(0, ov_mutex_acquire(mutex));
  EXPECT_EQ(0, ov_mutex_release(mutex));
  ov_mutex_dispose(&mutex);
  EXPECT_EQ(nullptr, mutex);
  ov_mutex_dispose(&mutex);
  ov_mutex_dispose(nullptr);
}

TEST(MutexTest, NullIsABadArgument) {
  EXPECT_EQ(22, ov_mutex_init(nullptr));
  EXPECT_EQ(22, ov_mutex_init_recursive(nullptr));
  EXPECT_EQ(22, ov_mutex_destroy(nullptr));
  EXPECT_EQ(22, ov_mutex_create(nullptr));
  EXPECT_EQ(22, ov_mutex_acquire(nullptr));
  EXPECT_EQ(22, ov_mutex_acquire_nb(nullptr));
  EXPECT_EQ(22, ov_mutex_release(nullptr));
  ov_cond condition;
  ov_mutex mutex;
  EXPECT_EQ(22, ov_cond_init(nullptr, &mutex));
  EXPECT_EQ(22, ov_cond_init(&condition, nullptr));
  EXPECT_EQ(22, ov_cond_destroy(nullptr));
  EXPECT_EQ(22, ov_cond_wait(nullptr));
  EXPECT_EQ(22, ov_cond_timedwait(nullptr, nullptr));
  EXPECT_EQ(22, ov_cond_timedwait_ms(nullptr, 1));
  EXPECT_EQ(22, ov_cond_signal(nullptr));
  EXPECT_EQ(22, ov_cond_signal_all(nullptr));
}

TEST(MutexDeathTest, AcquiringAgainEndsTheProcess) {
  EXPECT_DEATH(
      {
        ov_log_cleanup();
        ov_log_init_function([](const char* text) { fprintf(stderr, "%s\n", text); });
        ov_mutex mutex;
        ov_mutex_init(&mutex);
        ov_mutex_acquire(&mutex);
        ov_mutex_acquire(&mutex);
      },
      "ERR ov_mutex_acquire: attempt to reacquire non-recursive mutex.  Aborting.");
}

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

// What a thread of the tests below gets and leaves.
struct Visit {
  std::atomic<bool> go{false};
  std::atomic<uint32_t> self{0};
  static decltype(ov_thread_fn{}(nullptr)) run(void* argument) {
    auto* const visit = static_cast<Visit*>(argument);
    visit->self = ov_thread_self();
    while (!visit->go) ov_thread_sleep(1);
    return 0;
  }
};

TEST(ThreadTest, SpawnAndJoin) {
  Visit visit;
  ov_thread thread;
  ASSERT_EQ(0, ov_thread_spawn(&thread, &Visit::run, &visit));
  EXPECT_EQ(0, ov_thread_alive(&thread));
  const uint32_t id = ov_thread_getid(&thread);
  EXPECT_NE(0U, id);
  EXPECT_NE(ov_thread_self(), id);
  visit.go = true;
  EXPECT_EQ(0, ov_thread_join(&thread));
  EXPECT_EQ(id, visit.self);
  EXPECT_EQ(~uintptr_t{0}, reinterpret_cast<uintptr_t>(thread.handle));
}

// A thread that reads the record it is joined by, at once.
struct SelfReader {
  ov_thread thread = {};
  ov_thread seen = {};
  static decltype(ov_thread_fn{}(nullptr)) run(void* argument) {
    auto* const reader = static_cast<SelfReader*>(argument);
    reader->seen = reader->thread;
    return 0;
  }
};

TEST(ThreadTest, RecordIsFilledWhenTheThreadRuns) {
  for (int round = 0; round < 200; ++round) {
    SelfReader reader;
    ASSERT_EQ(0, ov_thread_spawn(&reader.thread, &SelfReader::run, &reader));
    const ov_thread given = reader.thread;
    ASSERT_EQ(0, ov_thread_join(&reader.thread));
    ASSERT_EQ(given.id, reader.seen.id);
    ASSERT_EQ(given.handle, reader.seen.handle);
  }
}

TEST(ThreadTest, AliveTellsThatTheThreadIsOver) {
  Visit visit;
  visit.go = true;
  ov_thread thread;
  ASSERT_EQ(0, ov_thread_spawn(&thread, &Visit::run, &visit));
  while (ov_thread_alive(&thread) == 0) ov_thread_sleep(1);
  EXPECT_EQ(0, ov_thread_join(&thread));
  EXPECT_EQ(1, ov_thread_alive(&thread));
}

TEST(ThreadTest, JoiningTwiceIsRefused) {
  Visit visit;
  visit.go = true;
  ov_thread thread;
  ASSERT_EQ(0, ov_thread_spawn(&thread, &Visit::run, &visit));
  EXPECT_EQ(0, ov_thread_join(&thread));
  ov::CapturedLog log;
  EXPECT_EQ(6, ov_thread_join(&thread));
  thread.handle = nullptr;
  EXPECT_EQ(6, ov_thread_join(&thread));
  EXPECT_EQ(1, ov_thread_alive(&thread));
  EXPECT_EQ(Messages(2, "LOG ov_thread_join failed, err=6"), log.take());
}

TEST(ThreadTest, DetachedThreadRuns) {
  static Visit visit;  // the thread may look at it after the case
  visit.go = true;
  ASSERT_EQ(0, ov_thread_spawn(nullptr, &Visit::run, &visit));
  while (visit.self == 0) ov_thread_sleep(1);
  EXPECT_EQ(0U, ov_thread_getid(nullptr));
}

TEST(ThreadTest, ExitEndsOnlyTheThread) {
  const auto leave = [](void*) -> decltype(ov_thread_fn{}(nullptr)) {
    ov_thread_exit();
    return 1;
  };
  ov_thread thread;
  ASSERT_EQ(0, ov_thread_spawn(&thread, leave, nullptr));
  EXPECT_EQ(0, ov_thread_join(&thread));
}

TEST(ThreadTest, NullArgumentsAreCountedWhenAssertionsAreOff) {
  const int32_t before = g_ov_asserts_skipped;
  ov_thread thread;
  EXPECT_EQ(22, ov_thread_spawn(&thread, nullptr, nullptr));
  EXPECT_EQ(22, ov_thread_join(nullptr));
  EXPECT_EQ(before, g_ov_asserts_skipped);
  g_ov_asserts_active = 0;
  EXPECT_EQ(22, ov_thread_spawn(&thread, nullptr, nullptr));
  EXPECT_EQ(22, ov_thread_join(nullptr));
  g_ov_asserts_active = 1;
  EXPECT_EQ(before + 2, g_ov_asserts_skipped);
}

}  // namespace
