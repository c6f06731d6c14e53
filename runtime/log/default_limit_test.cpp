#include "runtime/log/file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "tests/support/runtime/log_file_fixture.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;
using LogDefaultLimitTest = ov::LogFileFixture;

// A log of its own: the process's one has been given a limit before.
TEST_F(LogDefaultLimitTest, LimitThatNobodySetIs10Mebibytes) {
  for (const char* name : {"app.log", "app.log:0"}) {
    for (const auto& [size, expected] :
         {std::pair{10 * ov::kMebibyte - 1, "0"}, {10 * ov::kMebibyte, "01"}}) {
      make(0, size);
      ov::LogFile fresh;
      bool complete = false;
      EXPECT_EQ(0, fresh.open(path(name).c_str(), &complete));
      fresh.close();
      EXPECT_EQ(expected, digits()) << name;
    }
    std::filesystem::remove(TempFolder::native(generation(1)));
  }
}

}  // namespace
