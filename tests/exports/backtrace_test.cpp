#include <gtest/gtest.h>

#include <string>

#include "tests/support/runtime/captured_log.h"

namespace {

TEST(BacktraceTest, IsLoggedOnRequest) {
  ov::CapturedLog log;
  ov_log_btrace();
  const std::vector<std::string> lines = log.take();
  EXPECT_LT(2u, lines.size());
  for (const std::string& line : lines) EXPECT_TRUE(line.starts_with("ERR ")) << line;
}

}  // namespace
