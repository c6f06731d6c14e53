#include "runtime/ov_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

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
