#include <gtest/gtest.h>

#include "runtime/ov_paths.h"

namespace {

TEST(ExportedPathsTest, AWidePathHasTheLongFormAndBackslashes) {
  wchar_t wide[64] = L"";
  size_t bytes = sizeof wide;
  ASSERT_EQ(0, ov_path_widen_path("C:/some/folder/a.txt", wide, &bytes));
  EXPECT_STREQ(LR"(\\?\C:\some\folder\a.txt)", wide);
  EXPECT_EQ(sizeof LR"(\\?\C:\some\folder\a.txt)", bytes);
}

}  // namespace
