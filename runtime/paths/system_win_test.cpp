// Directories of the process and its user, by the system's own calls.
#include <windows.h>
#include <lm.h>

#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"

namespace {

std::string utf8(const wchar_t* wide) {
  char text[OV_PATH_SIZE];
  size_t bytes = sizeof text;
  return ov_wchar_to_utf8(wide, text, &bytes) == 0 ? text : "ill-formed";
}

TEST(DirectoriesTest, Present) {
  char out[OV_PATH_SIZE];
  wchar_t wide[OV_PATH_SIZE];
  ASSERT_NE(0U, GetCurrentDirectoryW(OV_PATH_SIZE, wide));
  EXPECT_EQ(0, ov_path_getcwd(out, sizeof out));
  EXPECT_EQ(utf8(wide), out);
  EXPECT_EQ(122, ov_path_getcwd(out, 2));
  EXPECT_EQ(22, ov_path_getcwd(nullptr, 2));
}

// The profile's variable, which ends as it was.
class DirectoriesHomeTest : public ::testing::Test {
 protected:
  DirectoriesHomeTest() { GetEnvironmentVariableW(L"USERPROFILE", profile_, OV_PATH_SIZE); }
  ~DirectoriesHomeTest() override { SetEnvironmentVariableW(L"USERPROFILE", profile_); }
  wchar_t profile_[OV_PATH_SIZE] = L"";
};

TEST_F(DirectoriesHomeTest, Home) {
  char out[OV_PATH_SIZE];
  SetEnvironmentVariableW(L"USERPROFILE", L"C:\\users\\x\\..\\\u00E4");
  EXPECT_EQ(11, ov_path_home_dir(out, sizeof out));
  EXPECT_STREQ("C:/users/\xC3\xA4", out);
  EXPECT_EQ(-1, ov_path_home_dir(out, 4));
  EXPECT_EQ(-1, ov_path_home_dir(nullptr, 4));
  SetEnvironmentVariableW(L"USERPROFILE", nullptr);
  EXPECT_EQ(-1, ov_path_home_dir(out, sizeof out));
}

TEST(DirectoriesTest, HomeOfAUserNeedsTheUser) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(NERR_UserNotFound, ov_path_user_home_dir("nobody of this name", out, sizeof out));
  EXPECT_EQ(22, ov_path_user_home_dir(nullptr, out, sizeof out));
  EXPECT_EQ(22, ov_path_user_home_dir("x", nullptr, sizeof out));
}

}  // namespace
