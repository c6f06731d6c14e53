#include <gtest/gtest.h>

#include <atomic>

#include "runtime/sync/internal.h"

namespace {

std::atomic<int> calls;

// Before and after the switch to the kernel mutex.
class ReacquireTest : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(BeforeAndAfterTheSwitch, ReacquireTest, ::testing::Bool());

TEST_P(ReacquireTest, HolderCannotAcquireAgain) {
  ov_mutex mutex;
  ov_cond condition;
  ASSERT_EQ(0, ov_mutex_init(&mutex));
  if (GetParam()) {
    ASSERT_EQ(0, ov_cond_init(&condition, &mutex));
  }
  calls = 0;
  ov::reacquire_hook = [] { ++calls; };
  EXPECT_EQ(0, ov_mutex_acquire(&mutex));
  EXPECT_EQ(183, ov_mutex_acquire(&mutex));
  EXPECT_EQ(1, calls);
  EXPECT_EQ(183, ov_mutex_acquire_nb(&mutex));
  EXPECT_EQ(1, calls);
  ov::reacquire_hook = nullptr;
  EXPECT_EQ(0, ov_mutex_release(&mutex));
  if (GetParam()) {
    EXPECT_EQ(0, ov_cond_destroy(&condition));
  }
  EXPECT_EQ(0, ov_mutex_destroy(&mutex));
}

}  // namespace
