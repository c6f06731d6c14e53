// Semaphores and named locks by the system's own calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_threads.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

class SemaphoresSystemTest : public ::testing::Test {
 protected:
  ov::CapturedLog log_;
};

TEST_F(SemaphoresSystemTest, CountsDownToZero) {
  ov_sem s;
  ASSERT_EQ(0, ov_sem_init(&s, 2));
  EXPECT_EQ(0, ov_sem_wait(&s));
  EXPECT_EQ(0, ov_sem_trywait(&s, 0));
  EXPECT_EQ(10035, ov_sem_trywait(&s, 0));
  EXPECT_EQ(10035, ov_sem_trywait(&s, 10));
  EXPECT_EQ(0, ov_sem_post(&s));
  EXPECT_EQ(0, ov_sem_trywait(&s, -1));
  std::thread poster([&s] { EXPECT_EQ(0, ov_sem_post(&s)); });
  EXPECT_EQ(0, ov_sem_wait(&s));
  poster.join();
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_EQ(0, ov_sem_destroy(&s));
  EXPECT_EQ(INVALID_HANDLE_VALUE, s);
}

TEST_F(SemaphoresSystemTest, WaitOnADestroyedOneFailsAtOnce) {
  ov_sem s = INVALID_HANDLE_VALUE;
  EXPECT_EQ(6, ov_sem_wait(&s));
  EXPECT_EQ(6, ov_sem_trywait(&s, 10));
  s = nullptr;
  EXPECT_EQ(6, ov_sem_wait(&s));
  EXPECT_EQ(Messages(3, "LOG ov_sem_wait, not signalled, err=6"), log_.take());
}

TEST_F(SemaphoresSystemTest, NamedLockIsSharedByItsName) {
  ov_named_mutex a;
  ov_named_mutex b;
  ASSERT_EQ(0, ov_named_local_mutex_init(&a, "one"));
  ASSERT_EQ(0, ov_named_local_mutex_init(&b, "one"));
  EXPECT_EQ(0, ov_named_mutex_acquire(&a));
  EXPECT_EQ(258, ov_named_mutex_acquire_nb(&b));
  EXPECT_EQ(Messages{"LOG ov_named_mutex_acquire_nb: unknown err=258:"}, log_.take());
  std::thread([&b] { EXPECT_EQ(0, ov_named_mutex_release(&b)); }).join();  // it has no owner
  EXPECT_EQ(0, ov_named_mutex_acquire_nb(&b));
  EXPECT_EQ(0, ov_named_mutex_release(&b));
  EXPECT_EQ(0, ov_named_mutex_destroy(&a));
  EXPECT_EQ(INVALID_HANDLE_VALUE, a);
  EXPECT_EQ(0, ov_named_mutex_force_destroy(&b));
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(SemaphoresSystemTest, NamedLockMayBeNamedByAPath) {
  ov_named_mutex a;
  ov_named_mutex b;
  ASSERT_EQ(0, ov_named_mutex_init(&a, R"(C:\dir\file)"));
  ASSERT_EQ(0, ov_named_mutex_init(&b, "C:/dir/file"));
  EXPECT_EQ(0, ov_named_mutex_acquire(&a));
  EXPECT_EQ(258, ov_named_mutex_acquire_nb(&b));
  const HANDLE same = CreateSemaphoreA(nullptr, 1, 1, R"(Global\ov_mutex_C:/dir/file)");
  EXPECT_EQ(DWORD{ERROR_ALREADY_EXISTS}, GetLastError());
  CloseHandle(same);
  EXPECT_EQ(0, ov_named_mutex_destroy(&a));
  EXPECT_EQ(0, ov_named_mutex_destroy(&b));
}

TEST_F(SemaphoresSystemTest, NamedLockMayHaveANameOfAnyLanguage) {
  ov_named_mutex a;
  ASSERT_EQ(0, ov_named_local_mutex_init(&a, "\xD0\x96\xC3\xA4\xE6\x97\xA5"));
  const HANDLE same = CreateSemaphoreW(nullptr, 1, 1, L"Local\\ov_mutex_\u0416\u00E4\u65E5");
  EXPECT_EQ(DWORD{ERROR_ALREADY_EXISTS}, GetLastError());
  CloseHandle(same);
  EXPECT_EQ(0, ov_named_mutex_destroy(&a));
  EXPECT_EQ(22, ov_named_local_mutex_init(&a, "\xFF"));
  EXPECT_EQ(nullptr, a);
  EXPECT_EQ(Messages{"LOG ov_named_mutex_init failed, err=22"}, log_.take());
}

}  // namespace
