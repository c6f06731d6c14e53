#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/runtime/fake_names.h"

namespace {

// One case: the name is remembered for the process.
TEST(HostNameTest, IsRememberedAfterTheFirstSuccess) {
  char out[520] = "old";
  ov::fake_names.computer_error = 5;
  EXPECT_EQ(22, ov_platform_hostname(out, sizeof out));
  ov::fake_names = {};
  ov::fake_names.computer = "Machine";
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&wrong] {
      char name[520];
      const bool right =
          ov_platform_hostname(name, sizeof name) == 0 && std::string("Machine") == name;
      wrong += right ? 0 : 1;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong);
  ov::fake_names.computer_error = 5;
  EXPECT_EQ(0, ov_platform_hostname(out, sizeof out));
  EXPECT_STREQ("Machine", out);
  EXPECT_EQ(28677, ov_platform_hostname(out, 7));
  EXPECT_STREQ("Machin", out);
  EXPECT_EQ(0, ov_platform_hostname(out, 8));
  EXPECT_EQ(22, ov_platform_hostname(nullptr, 8));
  EXPECT_EQ(22, ov_platform_hostname(out, 0));
}

}  // namespace
