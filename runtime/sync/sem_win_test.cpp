#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_threads.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// What the next waits give instead of the real result, and the last error they leave.
DWORD waitResult = WAIT_OBJECT_0;
DWORD waitError = 0;

DWORD WINAPI waitForSingleObject(HANDLE handle, DWORD milliseconds) {
  if (waitResult == WAIT_OBJECT_0) return WaitForSingleObjectEx(handle, milliseconds, FALSE);
  SetLastError(waitError);
  return waitResult;
}

}  // namespace

extern "C" {
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = waitForSingleObject;
}

namespace {

class SemaphoresTest : public ::testing::Test {
 protected:
  SemaphoresTest() { waitResult = WAIT_OBJECT_0; }
  ~SemaphoresTest() override { waitResult = WAIT_OBJECT_0; }
  ov::CapturedLog log_;
};

TEST_F(SemaphoresTest, Failures) {
  ov_sem s;
  EXPECT_EQ(87, ov_sem_init(&s, 32768));
  EXPECT_EQ(Messages{"LOG ov_sem_init failed, err=87"}, log_.take());
  ASSERT_EQ(0, ov_sem_init(&s, 32767));
  EXPECT_EQ(298, ov_sem_post(&s));
  EXPECT_EQ(Messages{"LOG ov_sem_post, ReleaseSemaphore failed, err=298"}, log_.take());
  waitResult = WAIT_FAILED;
  waitError = 5;
  EXPECT_EQ(5, ov_sem_wait(&s));
  waitResult = WAIT_ABANDONED;
  EXPECT_EQ(128, ov_sem_trywait(&s, 1));
  EXPECT_EQ((Messages{"LOG ov_sem_wait, not signalled, err=5",
                      "LOG ov_sem_wait, not signalled, err=128"}),
            log_.take());
  auto* stale = reinterpret_cast<ov_sem>(uintptr_t{0x7FFFFFF0});
  EXPECT_EQ(6, ov_sem_destroy(&stale));
  EXPECT_EQ(Messages{"LOG ov_sem_destroy, CloseHandle failed, err=6"}, log_.take());
  EXPECT_EQ(0, ov_sem_destroy(&s));
  EXPECT_EQ(22, ov_sem_init(nullptr, 0));
  EXPECT_EQ(22, ov_sem_destroy(nullptr));
  EXPECT_EQ(22, ov_sem_post(nullptr));
  EXPECT_EQ(22, ov_sem_wait(nullptr));
}

TEST_F(SemaphoresTest, NamedLockFailures) {
  ov_named_mutex m;
  EXPECT_EQ(28677, ov_named_mutex_init(&m, std::string(520, 'x').c_str()));
  EXPECT_EQ(nullptr, m);
  const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, R"(Local\ov_mutex_event)");
  EXPECT_EQ(6, ov_named_local_mutex_init(&m, "event"));
  CloseHandle(event);
  EXPECT_EQ((Messages{"LOG ov_named_mutex_init failed, err=28677",
                      "LOG ov_named_mutex_init failed, err=6"}),
            log_.take());
  ASSERT_EQ(0, ov_named_local_mutex_init(&m, "two"));
  EXPECT_EQ(298, ov_named_mutex_release(&m));
  char line[160];
  snprintf(line, sizeof line,
           "LOG ov_named_mutex_release failed. err=298 &m->sem=0x%p, m->sem=0x%llx",
           static_cast<void*>(&m), reinterpret_cast<unsigned long long>(m));
  EXPECT_EQ(Messages{line}, log_.take());
  waitResult = WAIT_FAILED;
  waitError = 5;
  EXPECT_EQ(5, ov_named_mutex_acquire(&m));
  waitResult = WAIT_ABANDONED;
  EXPECT_EQ(128, ov_named_mutex_acquire(&m));
  EXPECT_EQ(128, ov_named_mutex_acquire_nb(&m));
  waitResult = WAIT_OBJECT_0;
  EXPECT_EQ((Messages{"LOG ov_named_mutex_acquire failed, err=5",
                      "LOG ov_named_mutex_acquire: wait abandoned",
                      "LOG ov_named_mutex_acquire_nb: wait abandoned"}),
            log_.take());
  EXPECT_EQ(0, ov_named_mutex_destroy(&m));
  EXPECT_EQ(6, ov_named_mutex_acquire(&m));
  m = reinterpret_cast<ov_named_mutex>(uintptr_t{0x7FFFFFF0});
  EXPECT_EQ(6, ov_named_mutex_destroy(&m));
  m = reinterpret_cast<ov_named_mutex>(uintptr_t{0x7FFFFFF0});
  EXPECT_EQ(6, ov_named_mutex_force_destroy(&m));
  EXPECT_EQ((Messages{"LOG ov_named_mutex_acquire failed, err=6",
                      "LOG ov_named_mutex_destroy, CloseHandle failed, err=6",
                      "LOG ov_named_mutex_force_destroy, CloseHandle failed, err=6"}),
            log_.take());
  EXPECT_EQ(22, ov_named_mutex_init(nullptr, "x"));
  EXPECT_EQ(22, ov_named_mutex_init(&m, nullptr));
  EXPECT_EQ(22, ov_named_mutex_acquire(nullptr));
  EXPECT_EQ(22, ov_named_mutex_release(nullptr));
  EXPECT_EQ(22, ov_named_mutex_destroy(nullptr));
}

}  // namespace
