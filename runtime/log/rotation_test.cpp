#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_log.h"
#include "tests/support/runtime/log_file_fixture.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;
using ov::TempFolder;
using LogRotationTest = ov::LogFileFixture;

TEST_F(LogRotationTest, SizeSuffixSetsTheLimit) {
  make(0, 2 * ov::kMebibyte - 1);
  EXPECT_EQ("0", target("app.log:2"));
  std::filesystem::resize_file(TempFolder::native(generation(0)), 2 * ov::kMebibyte);
  EXPECT_EQ("1", target("app.log:2"));
}

TEST_F(LogRotationTest, SizeSuffixOf0OrTooLargeIsCutAndKeepsTheLimit) {
  for (const char* suffix : {":0", ":000", ":536870912", ":99999999999999999999999999"}) {
    make(0, 10 * ov::kMebibyte - 1);
    EXPECT_EQ("0", target(std::string("app.log") + suffix)) << suffix;
    make(0, 10 * ov::kMebibyte);
    EXPECT_EQ("1", target(std::string("app.log") + suffix)) << suffix;
    std::filesystem::remove(TempFolder::native(generation(1)));
  }
}

TEST_F(LogRotationTest, SetterOfTheLimitCountsInMebibytes) {
  make(0, 3 * ov::kMebibyte);
  ov_log_set_logfile_size(4);
  EXPECT_EQ("0", target());
  ov_log_set_logfile_size(4096);
  EXPECT_EQ("0", target());
  make(0, 3 * ov::kMebibyte);
  ov_log_set_logfile_size(3);
  EXPECT_EQ("1", target());
}

TEST_F(LogRotationTest, LimitsFrom2048AndBelow0AreBeyondAnyFile) {
  for (const int32_t size : {2048, 4095, -1, INT32_MIN + 4095}) {
    make(0, 3000 * ov::kMebibyte);
    ov_log_set_logfile_size(size);
    ASSERT_EQ(0, ov_log_init(2, path().c_str()));
    EXPECT_EQ("0", digits()) << size;
    ov_log_cleanup();
  }
}

TEST_F(LogRotationTest, LimitOf0EndsAfterOneTurnOfTheRing) {
  ov_log_set_logfile_size(0);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("still written");
  EXPECT_EQ(Lines{"LOG still written"}, ov::log_messages(content("app.log")));
  EXPECT_EQ(Lines{"LOG still written"}, ov::log_messages(content("app.0.log")));
}

TEST_F(LogRotationTest, WritingResumesBeforeTheGap) {
  for (int digit = 0; digit < 9; ++digit) make(digit);
  EXPECT_EQ("8", target());
  EXPECT_FALSE(std::filesystem::exists(TempFolder::native(path())));
}

TEST_F(LogRotationTest, ZeroAndNineResumeInZero) {
  make(0);
  make(9);
  EXPECT_EQ("0", target());
}

TEST_F(LogRotationTest, FullGenerationHandsOverToTheNextAndTheGapMovesOn) {
  for (int digit = 0; digit < 9; ++digit) make(digit, ov::kMebibyte);
  ov_log_set_logfile_size(1);
  EXPECT_EQ("9", target());
  EXPECT_EQ("123456789", digits());
  EXPECT_EQ(content("app.9.log"), content("app.log"));
}

TEST_F(LogRotationTest, NineIsFollowedByZeroAndOneIsDeleted) {
  for (int digit = 1; digit < 10; ++digit) make(digit, ov::kMebibyte);
  ov_log_set_logfile_size(1);
  EXPECT_EQ("0", target());
  EXPECT_EQ("023456789", digits());
}

TEST_F(LogRotationTest, RunningLogRotatesWhenItIsFull) {
  ov_log_set_logfile_size(1);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  const std::string filler(1000, 'x');
  int count = 0;
  while (digits() == "0" && count < 2000) ov_log("%05d %s", count++, filler.c_str());
  EXPECT_EQ("01", digits());
  ov_log("behind the turn");
  ov_log_cleanup();
  const Lines first = ov::log_messages(content("app.0.log"));
  EXPECT_EQ(static_cast<size_t>(count), first.size());
  EXPECT_EQ(Lines{"LOG behind the turn"}, ov::log_messages(content("app.log")));
  const uint64_t size = std::filesystem::file_size(TempFolder::native(generation(0)));
  EXPECT_LE(ov::kMebibyte, size);
  EXPECT_GT(ov::kMebibyte + 65536 + 4096 + 256, size);
}

TEST_F(LogRotationTest, RingHoldsNineFilesAtMostAndTheNameFollowsTheLiveOne) {
  ov_log_set_logfile_size(1);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  const std::string filler(4000, 'x');
  std::string passed;
  for (int i = 0; i < 3600; ++i) {
    ov_log("%d %s", i, filler.c_str());
    if (i % 40 != 0) continue;
    const std::string found = digits();
    ASSERT_GE(9u, found.size());
    if (!passed.ends_with(found)) passed += " " + found;
    const std::string line = " LOG " + std::to_string(i) + " " + filler + "\r\n";
    ASSERT_TRUE(content("app.log").ends_with(line)) << i;
  }
  EXPECT_TRUE(passed.starts_with(
      " 0 01 012 0123 01234 012345 0123456 01234567 012345678 123456789 023456789 013456789"))
      << passed;
}

TEST_F(LogRotationTest, ThreadsWriteWholeLinesAcrossRotations) {
  constexpr int kThreadCount = 8;
  constexpr int kLineCount = 600;
  ov_log_set_logfile_size(1);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreadCount; ++i) {
    threads.emplace_back([i] {
      const std::string filler(600, static_cast<char>('a' + i));
      for (int n = 0; n < kLineCount; ++n) ov_log("%d %d %s", i, n, filler.c_str());
    });
  }
  for (std::thread& thread : threads) thread.join();
  ov_log_cleanup();
  EXPECT_LT(1u, digits().size());
  std::set<std::string> found;
  for (const char digit : digits()) {
    for (const std::string& line : ov::log_messages(TempFolder::read(generation(digit - '0')))) {
      found.insert(line);
    }
  }
  std::set<std::string> expected;
  for (int i = 0; i < kThreadCount; ++i) {
    for (int n = 0; n < kLineCount; ++n) {
      expected.insert("LOG " + std::to_string(i) + " " + std::to_string(n) + " " +
                      std::string(600, static_cast<char>('a' + i)));
    }
  }
  EXPECT_EQ(expected, found);
}

}  // namespace
