#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/caller_state.h"
#include "tests/support/runtime/log_file_fixture.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;
using ov::TempFolder;
using LogPathTest = ov::LogFileFixture;

TEST_F(LogPathTest, BadPathLeavesTheLogSetUpWithoutAFile) {
  EXPECT_EQ(OV_EINVAL, ov_log_init(2, nullptr));
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "dropped"));
  EXPECT_EQ(0, ov_log_init(2, path().c_str()));
  EXPECT_EQ("", digits());
  ov_log_flush();
  ov_log_cleanup();
  for (const size_t length : {size_t{520}, size_t{521}, size_t{5000}}) {
    EXPECT_EQ(OV_EPATHMAX, ov_log_init(2, std::string(length, 'x').c_str())) << length;
    EXPECT_EQ(0, ov_log_init(2, path().c_str()));
    ov_log_cleanup();
  }
  EXPECT_EQ("", digits());
}

TEST_F(LogPathTest, PathOf519BytesIsTheLongest) {
  std::string longest = path("none/");
  longest.append(519 - longest.size(), 'x');
  testing::internal::CaptureStderr();
  const ov_rc opened = ov_log_init(2, longest.c_str());
  EXPECT_NE(OV_EPATHMAX, opened);
  EXPECT_NE(0, opened);  // there is no such directory
  EXPECT_NE("", testing::internal::GetCapturedStderr());
  ov_log_cleanup();
  EXPECT_EQ(OV_EPATHMAX, ov_log_init(2, (longest + "x").c_str()));
}

TEST_F(LogPathTest, MissingDirectoryIsToldOnStandardError) {
  testing::internal::CaptureStderr();
  EXPECT_NE(0, ov_log_init(2, path("none/app.log").c_str()));
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, told.find("Error opening log directory " + path("none"))) << told;
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "dropped"));
}

TEST_F(LogPathTest, FileThatCannotBeOpenedIsToldOnStandardErrorAndGives22) {
  std::filesystem::create_directory(TempFolder::native(generation(0)));
  testing::internal::CaptureStderr();
  EXPECT_EQ(OV_EINVAL, ov_log_init(2, path().c_str()));
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, told.find("Cannot open log file: " + generation(0))) << told;
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "dropped"));
}

TEST_F(LogPathTest, BackslashesBecomeSlashes) {
  std::string windows = path();
  std::replace(windows.begin() + static_cast<std::ptrdiff_t>(windows.rfind('/')), windows.end(),
               '/', '\\');
  ASSERT_EQ(0, ov_log_init(2, windows.c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, ov::log_messages(content("app.log")));
}

TEST_F(LogPathTest, WhatFollowsTheDigitsOfTheSuffixStays) {
  ASSERT_EQ(0, ov_log_init(2, path("app:5.log").c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, ov::log_messages(content("app.0.log")));
}

TEST_F(LogPathTest, ColonWithoutDigitsIsPartOfTheName) {
  ASSERT_EQ(0, ov_log_init(2, path("app.log:x").c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, ov::log_messages(content("app.0.log:x")));
}

// Where a log with a bare name goes.
std::string default_directory() {
  char program[520];
  char root[520];
  char directory[520];
  EXPECT_LE(0, ov_path_executable_path(program, sizeof program));
  EXPECT_LE(0, ov_path_root_dir(program, root, sizeof root));
  ov_snprintf(directory, sizeof directory, "%s/var/log", root);
  if (!ov_path_exists(directory)) {
    EXPECT_LE(0, ov_path_executable_dir(directory, sizeof directory));
  }
  return directory;
}

TEST_F(LogPathTest, ColonOfADriveIsNoSuffix) {
  const std::string stem = "C:5-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log").c_str()));
  ov_log("drive");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG drive"}, ov::log_messages(TempFolder::read(whole + ".0.log")));
  for (const char* end : {".log", ".0.log"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
}

TEST_F(LogPathTest, BareNameGoesToTheDefaultDirectoryAndKeepsItsSuffix) {
  const std::string stem = "ov-log-test-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log").c_str()));
  ov_log("bare");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG bare"}, ov::log_messages(TempFolder::read(whole + ".0.log")));
  EXPECT_EQ(Lines{"LOG bare"}, ov::log_messages(TempFolder::read(whole + ".log")));
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log:5").c_str()));
  ov_log("suffix");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG suffix"}, ov::log_messages(TempFolder::read(whole + ".0.log:5")));
  for (const char* end : {".log", ".0.log", ".log:5", ".0.log:5"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
}

TEST_F(LogPathTest, SuffixOfABareNameSetsTheLimitAllTheSame) {
  const std::string stem = "ov-log-limit-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log:5").c_str()));
  ov_log_cleanup();
  // On Windows itself the part behind the colon is a stream of the file that is named before it.
  for (const char* end : {".log:5", ".0.log:5", ".log", ".0.log"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
  // The limit outlives the log that was given it.
  make(0, 5 * ov::kMebibyte - 1);
  EXPECT_EQ("0", target());
  make(0, 5 * ov::kMebibyte);
  EXPECT_EQ("1", target());
}

}  // namespace
