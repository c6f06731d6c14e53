// The library's own end of a process whose stack was written over, linked into a program that does
// so.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

extern "C" uintptr_t __stack_chk_guard;

namespace {

constexpr DWORD kSpoiltStackStatus = 0xC0000409;  // STATUS_STACK_BUFFER_OVERRUN

// More than the room has, where the compiler cannot see it.
volatile size_t behindTheRoom = 200;

[[gnu::noinline]] char writesOverItsStack() {
  char room[64];
  std::memset(room, 'x', behindTheRoom);
  return room[0];
}

TEST(StackGuardTest, ValueIsSeededAndEndsInAZero) {
  constexpr uintptr_t kBeforeAnySeed = 0xD7C3A5960F1E2D00U;
  EXPECT_NE(kBeforeAnySeed, __stack_chk_guard);
  EXPECT_NE(0U, __stack_chk_guard);
  EXPECT_EQ(0U, __stack_chk_guard & 0xFF);
}

TEST(StackGuardDeathTest, FunctionThatWroteOverItsStackEndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto isSpoilt = [](int status) { return static_cast<DWORD>(status) == kSpoiltStackStatus; };
  EXPECT_EXIT(static_cast<void>(writesOverItsStack()), isSpoilt, "");
}

}  // namespace
