#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

TEST(LibraryTest, OpenSymbolClose) {
  ov::CapturedLog log;
  ov_library library = &library;
  ov_library_init(&library);
  EXPECT_EQ(0, ov_library_is_open(&library));
  EXPECT_EQ(0, ov_library_close(&library));
  ASSERT_EQ(0, ov_library_open(&library, "shell32.dll"));
  EXPECT_EQ(1, ov_library_is_open(&library));
  void* symbol = nullptr;
  EXPECT_EQ(0, ov_library_symbol(&library, "ShellExecuteW", &symbol));
  EXPECT_NE(nullptr, symbol);
  EXPECT_EQ(127, ov_library_symbol(&library, "NoSuchSymbol", &symbol));
  EXPECT_EQ(nullptr, symbol);
  EXPECT_EQ(Messages{"ERR Loading lib symbol [NoSuchSymbol] failed"}, log.take());
  EXPECT_EQ(0, ov_library_close(&library));
  EXPECT_EQ(nullptr, library);
  EXPECT_EQ(6, ov_library_symbol(&library, "ShellExecuteW", &symbol));
}

TEST(LibraryTest, Failures) {
  ov::CapturedLog log;
  ov_library library = nullptr;
  EXPECT_EQ(126, ov_library_open(&library, "no-such-library.dll"));
  EXPECT_EQ(0, ov_library_is_open(&library));
  library = reinterpret_cast<ov_library>(uintptr_t{0x10000});
  const ov_rc error = ov_library_close(&library);
  EXPECT_NE(0, error);
  EXPECT_EQ(nullptr, library);
  const Messages lines = log.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("ERR Lib unloading failed, errno:" + std::to_string(error) +
                              ", err desc:"));
  EXPECT_EQ(22, ov_library_open(nullptr, "x"));
  EXPECT_EQ(22, ov_library_open(&library, nullptr));
  EXPECT_EQ(22, ov_library_close(nullptr));
  EXPECT_EQ(0, ov_library_is_open(nullptr));
  ov_library_init(nullptr);
  void* symbol = nullptr;
  EXPECT_EQ(22, ov_library_symbol(nullptr, "x", &symbol));
  EXPECT_EQ(22, ov_library_symbol(&library, nullptr, &symbol));
  EXPECT_EQ(22, ov_library_symbol(&library, "x", nullptr));
}

}  // namespace
