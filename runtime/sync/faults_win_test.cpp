// Failures of the kernel that do not happen by themselves: the import is replaced by one of ours.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_threads.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

using Messages = std::vector<std::string>;

// What the replaced calls do: the real thing, or fail with this code.
struct Faults {
  DWORD createMutex = 0;
  DWORD releaseMutex = 0;
  DWORD createSemaphore = 0;
  DWORD releaseSemaphore = 0;
  DWORD createEvent = 0;
  DWORD createThread = 0;
  DWORD resumeThread = 0;
  DWORD closeHandle = 0;
  DWORD wait = WAIT_OBJECT_0;  // the result of the next wait for one object
  DWORD waitError = 0;
  DWORD signalAndWait = WAIT_OBJECT_0;
  int closed = 0;
} faults;

HANDLE fail(DWORD error) {
  SetLastError(error);
  return nullptr;
}

HANDLE WINAPI createMutex(LPSECURITY_ATTRIBUTES, BOOL owned, LPCWSTR) {
  if (faults.createMutex != 0) return fail(faults.createMutex);
  return CreateMutexExW(nullptr, nullptr, owned ? CREATE_MUTEX_INITIAL_OWNER : 0, MUTEX_ALL_ACCESS);
}

BOOL WINAPI releaseMutex(HANDLE mutex) {
  const auto real = ov::real_call<decltype(&ReleaseMutex)>(L"kernel32.dll", "ReleaseMutex");
  if (faults.releaseMutex != 0) return fail(faults.releaseMutex) != nullptr ? TRUE : FALSE;
  return real(mutex);
}

HANDLE WINAPI createSemaphore(LPSECURITY_ATTRIBUTES, LONG initial, LONG most, LPCWSTR) {
  if (faults.createSemaphore != 0) return fail(faults.createSemaphore);
  return CreateSemaphoreExW(nullptr, initial, most, nullptr, 0, SEMAPHORE_ALL_ACCESS);
}

BOOL WINAPI releaseSemaphore(HANDLE semaphore, LONG count, LONG* previous) {
  const auto real = ov::real_call<decltype(&ReleaseSemaphore)>(L"kernel32.dll", "ReleaseSemaphore");
  if (faults.releaseSemaphore != 0) return fail(faults.releaseSemaphore) != nullptr ? TRUE : FALSE;
  return real(semaphore, count, previous);
}

HANDLE WINAPI createEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCWSTR) {
  if (faults.createEvent != 0) return fail(faults.createEvent);
  return CreateEventExW(nullptr, nullptr, 0, EVENT_ALL_ACCESS);
}

// A thread that may run does so to its end before its creator goes on.
HANDLE WINAPI createThread(LPSECURITY_ATTRIBUTES attributes, SIZE_T stack,
                           LPTHREAD_START_ROUTINE function, LPVOID argument, DWORD flags,
                           LPDWORD id) {
  const auto real = ov::real_call<decltype(&CreateThread)>(L"kernel32.dll", "CreateThread");
  if (faults.createThread != 0) return fail(faults.createThread);
  const HANDLE thread = real(attributes, stack, function, argument, flags, id);
  if ((flags & CREATE_SUSPENDED) == 0) WaitForSingleObjectEx(thread, INFINITE, FALSE);
  return thread;
}

DWORD WINAPI resumeThread(HANDLE thread) {
  const auto real = ov::real_call<decltype(&ResumeThread)>(L"kernel32.dll", "ResumeThread");
  if (faults.resumeThread == 0) return real(thread);
  fail(faults.resumeThread);
  return ~DWORD{0};
}

BOOL WINAPI closeHandle(HANDLE handle) {
  const auto real = ov::real_call<decltype(&CloseHandle)>(L"kernel32.dll", "CloseHandle");
  if (faults.closeHandle != 0) return fail(faults.closeHandle) != nullptr ? TRUE : FALSE;
  ++faults.closed;
  return real(handle);
}

DWORD WINAPI waitForSingleObject(HANDLE handle, DWORD milliseconds) {
  if (faults.wait == WAIT_OBJECT_0) return WaitForSingleObjectEx(handle, milliseconds, FALSE);
  if (faults.waitError != 0) SetLastError(faults.waitError);
  return faults.wait;
}

DWORD WINAPI signalObjectAndWait(HANDLE signal, HANDLE wait, DWORD milliseconds, BOOL alertable) {
  const auto real =
      ov::real_call<decltype(&SignalObjectAndWait)>(L"kernel32.dll", "SignalObjectAndWait");
  if (faults.signalAndWait == WAIT_OBJECT_0) return real(signal, wait, milliseconds, alertable);
  ReleaseMutex(signal);
  return faults.signalAndWait;
}

}  // namespace

extern "C" {
decltype(&CreateMutexW) __imp_CreateMutexW = createMutex;
decltype(&ReleaseMutex) __imp_ReleaseMutex = releaseMutex;
decltype(&CreateSemaphoreW) __imp_CreateSemaphoreW = createSemaphore;
decltype(&ReleaseSemaphore) __imp_ReleaseSemaphore = releaseSemaphore;
decltype(&CreateEventW) __imp_CreateEventW = createEvent;
decltype(&CreateThread) __imp_CreateThread = createThread;
decltype(&ResumeThread) __imp_ResumeThread = resumeThread;
decltype(&CloseHandle) __imp_CloseHandle = closeHandle;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = waitForSingleObject;
decltype(&SignalObjectAndWait) __imp_SignalObjectAndWait = signalObjectAndWait;
}

namespace {

class ThreadsWinTest : public ::testing::Test {
 protected:
  ThreadsWinTest() { faults = {}; }
  ~ThreadsWinTest() override { faults = {}; }

  ov_mutex mutex_;
  ov_cond condition_;
  ov::CapturedLog log_;
};

TEST_F(ThreadsWinTest, SwitchFails) {
  ov_mutex_init(&mutex_);
  faults.createMutex = 1450;
  EXPECT_EQ(1450, ov_cond_init(&condition_, &mutex_));
  EXPECT_EQ(Messages{"LOG ov_mutex_switch_to_mutex failed, err=1450"}, log_.take());
  EXPECT_EQ(0, mutex_.switched);
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
  faults.createMutex = 0;
  EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
  EXPECT_NE(0, mutex_.switched);
}

TEST_F(ThreadsWinTest, SwitchKeepsTheHolder) {
  ov_mutex_init(&mutex_);
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
  std::thread([this] { EXPECT_EQ(258, ov_mutex_acquire_nb(&mutex_)); }).join();
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
  std::thread([this] {
    EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_));
    EXPECT_EQ(0, ov_mutex_release(&mutex_));
  }).join();
}

TEST_F(ThreadsWinTest, SwitchOfAFreeRecursiveMutexLeavesItFree) {
  ov_mutex_init_recursive(&mutex_);
  ov_mutex_acquire(&mutex_);
  ov_mutex_release(&mutex_);  // the last owner stays in the record
  EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
  std::thread([this] {
    EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_));
    EXPECT_EQ(0, ov_mutex_release(&mutex_));
  }).join();
}

TEST_F(ThreadsWinTest, SwitchKeepsTheDepthOfARecursiveHolder) {
  ov_mutex_init_recursive(&mutex_);
  for (int i = 0; i < 3; ++i) ov_mutex_acquire(&mutex_);
  EXPECT_EQ(0, ov_cond_init(&condition_, &mutex_));
  for (int i = 0; i < 3; ++i) {
    std::thread([this] { EXPECT_EQ(258, ov_mutex_acquire_nb(&mutex_)); }).join();
    EXPECT_EQ(0, ov_mutex_release(&mutex_));
  }
  std::thread([this] { EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_)); }).join();
}

TEST_F(ThreadsWinTest, ConditionWithoutSemaphore) {
  ov_mutex_init(&mutex_);
  faults.createSemaphore = 8;
  EXPECT_EQ(8, ov_cond_init(&condition_, &mutex_));
  EXPECT_EQ(Messages{"LOG ov_cond_init, CreateSemaphore failed, err=8"}, log_.take());
}

TEST_F(ThreadsWinTest, ConditionWithoutEventGivesTheSemaphoreBack) {
  ov_mutex_init(&mutex_);
  faults.createEvent = 8;
  EXPECT_EQ(8, ov_cond_init(&condition_, &mutex_));
  EXPECT_EQ(Messages{"LOG ov_cond_init, CreateEvent failed, err=8"}, log_.take());
  EXPECT_EQ(1, faults.closed);
}

TEST_F(ThreadsWinTest, AWakeUpThatFailsIsToldAndNotWaitedFor) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  condition_.waiters = 1;
  faults.releaseSemaphore = 298;
  EXPECT_EQ(298, ov_cond_signal(&condition_));
  EXPECT_EQ(298, ov_cond_signal_all(&condition_));
  EXPECT_EQ(0, condition_.broadcast);
  EXPECT_EQ((Messages{"LOG ov_cond_signal, ReleaseSemaphore failed, err=298",
                      "LOG ov_cond_signal_all, ReleaseSemaphore failed, err=298"}),
            log_.take());
  condition_.waiters = 0;
  ov_cond_destroy(&condition_);
  ov_mutex_destroy(&mutex_);
}

TEST_F(ThreadsWinTest, DestroyKeepsAHandleThatDoesNotClose) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  faults.closeHandle = 6;
  EXPECT_EQ(6, ov_mutex_destroy(&mutex_));
  EXPECT_EQ(Messages{"LOG ov_mutex_destroy, CloseHandle failed, err=6"}, log_.take());
  EXPECT_NE(INVALID_HANDLE_VALUE, mutex_.mutex);
}

// Each failing result of the kernel's wait, and the log line behind the function's name.
struct WaitCase {
  DWORD result, error;
  ov_rc code;
  const char* line;
};
constexpr WaitCase kWaitCases[] = {{WAIT_FAILED, 6, 6, " failed, err=6"},
                                   {WAIT_ABANDONED, 0, 128, ": wait abandoned"},
                                   {WAIT_TIMEOUT, 0, 258, ": unknown err=258:"},
                                   {77, 0, 77, ": unknown err=77:"}};

TEST_F(ThreadsWinTest, KernelMutexWaits) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  for (const WaitCase& c : kWaitCases) {
    faults.wait = c.result;
    faults.waitError = c.error;
    EXPECT_EQ(c.code, ov_mutex_acquire(&mutex_));
    EXPECT_EQ(Messages{std::string("LOG ov_mutex_acquire") + c.line}, log_.take());
    EXPECT_EQ(c.code, ov_mutex_acquire_nb(&mutex_));
    EXPECT_EQ(Messages{std::string("LOG ov_mutex_acquire_nb") + c.line}, log_.take());
    EXPECT_EQ(0U, mutex_.owner);
  }
}

TEST_F(ThreadsWinTest, AbandonedMutex) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  std::thread([this] { ov_mutex_acquire(&mutex_); }).join();
  mutex_.owner = 0;
  EXPECT_EQ(128, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(Messages{"LOG ov_mutex_acquire: wait abandoned"}, log_.take());
}

TEST_F(ThreadsWinTest, StaleOwnerIsLoggedAndTheLockIsHeld) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  mutex_.owner = 4711;
  EXPECT_EQ(0, ov_mutex_acquire(&mutex_));
  EXPECT_EQ(4711U, mutex_.owner);
  EXPECT_EQ(Messages{"LOG ov_mutex_acquire failed.  Mutex is still owned by thread 4711"},
            log_.take());
  EXPECT_EQ(0, ov_mutex_acquire_nb(&mutex_));
  EXPECT_EQ(Messages{"LOG ov_mutex_acquire_nb failed.  Mutex is still owned by thread 4711"},
            log_.take());
}

TEST_F(ThreadsWinTest, FailedReleaseKeepsTheOwner) {
  for (const bool recursive : {false, true}) {
    recursive ? ov_mutex_init_recursive(&mutex_) : ov_mutex_init(&mutex_);
    ov_cond_init(&condition_, &mutex_);
    ov_mutex_acquire(&mutex_);
    faults.releaseMutex = 288;
    EXPECT_EQ(288, ov_mutex_release(&mutex_));
    faults.releaseMutex = 0;
    EXPECT_EQ(ov_thread_self(), mutex_.owner);
    char line[160];
    snprintf(line, sizeof line,
             "LOG ov_mutex_release failed. err=288 &m->mutex=0x%p, m->mutex=0x%llx",
             static_cast<void*>(&mutex_.mutex), reinterpret_cast<unsigned long long>(mutex_.mutex));
    EXPECT_EQ(Messages{line}, log_.take());
    EXPECT_EQ(0, ov_mutex_release(&mutex_));
  }
}

TEST_F(ThreadsWinTest, FailedConditionWaitIsABadArgumentWithTheMutexHeld) {
  ov_mutex_init(&mutex_);
  ov_cond_init(&condition_, &mutex_);
  ov_mutex_acquire(&mutex_);
  for (const DWORD result : {WAIT_FAILED, WAIT_ABANDONED, DWORD{77}}) {
    faults.signalAndWait = result;
    const int32_t limit[2] = {0, 1000};
    EXPECT_EQ(22, ov_cond_timedwait(&condition_, limit));
    EXPECT_EQ(ov_thread_self(), mutex_.owner);
    EXPECT_EQ(0, condition_.waiters);
  }
  faults.signalAndWait = WAIT_OBJECT_0;
  EXPECT_EQ(0, ov_mutex_release(&mutex_));
}

TEST_F(ThreadsWinTest, ThreadThatCannotStart) {
  faults.createThread = 8;
  ov_thread thread;
  EXPECT_EQ(8, ov_thread_spawn(
                   &thread, [](void*) -> DWORD { return 0; }, nullptr));
  EXPECT_EQ(Messages{"LOG ov_thread_spawn failed, err=8"}, log_.take());
}

// What a thread has seen of its own record.
struct Seen {
  ov_thread thread = {};
  uint32_t id = 0;
  static DWORD run(void* argument) {
    auto* const seen = static_cast<Seen*>(argument);
    seen->id = seen->thread.id;
    return 0;
  }
};

TEST_F(ThreadsWinTest, RecordIsFilledBeforeTheThreadCanReadIt) {
  Seen seen;
  ASSERT_EQ(0, ov_thread_spawn(&seen.thread, Seen::run, &seen));
  EXPECT_EQ(0, ov_thread_join(&seen.thread));
  EXPECT_EQ(seen.thread.id, seen.id);
}

TEST_F(ThreadsWinTest, ThreadThatCannotBeLetGo) {
  faults.resumeThread = 5;
  Seen seen;
  EXPECT_EQ(5, ov_thread_spawn(&seen.thread, Seen::run, &seen));
  EXPECT_EQ(Messages{"LOG ov_thread_spawn failed, err=5"}, log_.take());
  EXPECT_EQ(INVALID_HANDLE_VALUE, seen.thread.handle);
  EXPECT_EQ(1, faults.closed);
  EXPECT_EQ(0U, seen.id);
}

TEST_F(ThreadsWinTest, JoinThatFails) {
  ov_thread thread = {GetCurrentThread(), 1};
  faults.wait = WAIT_FAILED;
  faults.waitError = 5;
  EXPECT_EQ(5, ov_thread_join(&thread));
  faults.wait = WAIT_ABANDONED;
  EXPECT_EQ(128, ov_thread_join(&thread));
  EXPECT_EQ((Messages{"LOG ov_thread_join failed, err=5", "LOG ov_thread_join failed, err=128"}),
            log_.take());
}

}  // namespace
