#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;
using Messages = std::vector<std::string>;

TEST(PidFileTest, HoldsTheIdAndOneLineFeed) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("var/run/orvane").c_str(), 0, 1));
  char* path = nullptr;
  ASSERT_EQ(0, ov_process_create_pidfile(folder.path().c_str(), "test", &path));
  EXPECT_EQ(folder.path("var/run/orvane/test.pid"), path);
  const std::string file = path;
  EXPECT_EQ(std::to_string(GetCurrentProcessId()) + "\n", TempFolder::read(file));
  ov_process_destroy_pidfile(&path);
  EXPECT_EQ(nullptr, path);
  EXPECT_EQ(2, ov_file_exist(file.c_str(), 0));
  ov_process_destroy_pidfile(&path);
  ov_process_destroy_pidfile(nullptr);
}

TEST(PidFileTest, Failures) {
  const TempFolder folder;
  ov::CapturedLog log;
  char* path = const_cast<char*>("old");
  EXPECT_EQ(3, ov_process_create_pidfile(folder.path().c_str(), "test", &path));
  EXPECT_EQ(nullptr, path);
  const std::string name = "'" + folder.path("var/run/orvane/test.pid") + "', errno:3, err desc:";
  const Messages lines = log.take();
  ASSERT_EQ(2U, lines.size());
  EXPECT_EQ(0U, lines[0].find("ERR Unable to open pid file " + name));
  EXPECT_EQ(0U, lines[1].find("ERR Failure deleting pid file " + name));
  EXPECT_EQ(28677, ov_process_create_pidfile(std::string(520, 'x').c_str(), "test", &path));
  EXPECT_EQ(nullptr, path);
  EXPECT_EQ(22, ov_process_create_pidfile(nullptr, "test", &path));
  EXPECT_EQ(22, ov_process_create_pidfile("x", nullptr, &path));
  EXPECT_EQ(22, ov_process_create_pidfile("x", "y", nullptr));
}

}  // namespace
