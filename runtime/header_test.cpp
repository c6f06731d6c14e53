#include <gtest/gtest.h>

#include "runtime/ov_runtime.h"

extern "C" int32_t use_runtime_from_c(char* text, size_t size);

TEST(HeaderTest, ServesACProgram) {
  char text[64];
  EXPECT_EQ(0, use_runtime_from_c(text, sizeof text));
  EXPECT_STREQ("EBUFFER AB 01.045", text);
}
