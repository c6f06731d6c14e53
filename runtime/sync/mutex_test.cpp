#include "runtime/ov_threads.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_log.h"
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

}  // namespace
