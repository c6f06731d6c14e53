#include "runtime/log/file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_threads.h"
#include "tests/support/runtime/caller_state.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;
using ov::TempFolder;

constexpr uint64_t kMebibyte = 1 << 20;

// Lines of a log without their stamps; a line with an ill stamp stays as it is. The line ends are
// CR LF, and a last one without it is kept as "unfinished".
Lines messages(const std::string& content) {
  static const std::regex stamp(
      "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\[[0-9a-f]+-[0-9a-f]+\\] ");
  Lines lines;
  size_t at = 0;
  while (at < content.size()) {
    const size_t end = content.find("\r\n", at);
    if (end == std::string::npos) return lines.push_back("unfinished"), lines;
    lines.push_back(std::regex_replace(content.substr(at, end - at), stamp, ""));
    at = end + 2;
  }
  return lines;
}

class LogFileTest : public testing::Test {
 protected:
  void SetUp() override {
    ov_log_cleanup();
    ov_log_set(1);
    ov_dbg_set(0);
    ov_dbg_set_all(0);
    ov_log_set_logfile_size(10);
    // The last message outlives a log; this one is nobody's.
    ASSERT_EQ(0, ov_log_init(2, folder_.path("first.log").c_str()));
    ov_log("%s", folder_.path().c_str());
    ov_log_cleanup();
  }
  void TearDown() override { ov_log_cleanup(); }

  std::string path(const std::string& name = "app.log") const { return folder_.path(name); }
  std::string generation(int digit) const {
    return folder_.path("app." + std::to_string(digit) + ".log");
  }
  std::string content(const std::string& name) const { return TempFolder::read(path(name)); }

  void make(int digit, uint64_t size = 0) const {
    TempFolder::write(generation(digit), "");
    std::filesystem::resize_file(TempFolder::native(generation(digit)), size);
  }

  // The digits of the generations there are.
  std::string digits() const {
    std::string found;
    for (int digit = 0; digit < 10; ++digit) {
      if (std::filesystem::exists(TempFolder::native(generation(digit)))) {
        found += static_cast<char>('0' + digit);
      }
    }
    return found;
  }

  // The generation that a new log writes to.
  std::string target(const std::string& name = "app.log") {
    EXPECT_EQ(0, ov_log_init(2, path(name).c_str()));
    ov_log("find me %d", ++round_);
    ov_log_cleanup();
    std::string found;
    for (int digit = 0; digit < 10; ++digit) {
      const std::string text = TempFolder::read(generation(digit));
      if (text.find("find me " + std::to_string(round_)) != std::string::npos) {
        found += static_cast<char>('0' + digit);
      }
    }
    return found;
  }

  TempFolder folder_;
  int round_ = 0;
};

TEST_F(LogFileTest, LineCarriesDateProcessThreadLevelAndText) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_LOG, "text %d", 7));
  char ids[64];
  ov_snprintf(ids, sizeof ids, "\\[%x-%08x\\] LOG text 7\r\n", ov::this_process(),
              ov_thread_self());
  const std::string text = content("app.0.log");
  EXPECT_TRUE(std::regex_match(
      text, std::regex(std::string("20\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d ") + ids)))
      << text;
}

TEST_F(LogFileTest, ConfiguredPathIsAnotherNameOfTheLiveGeneration) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, messages(content("app.log")));
  ov_stat named;
  ov_stat live;
  ASSERT_EQ(0, ov_file_stat(path().c_str(), &named, OV_STAT_IDENTITY));
  ASSERT_EQ(0, ov_file_stat(generation(0).c_str(), &live, OV_STAT_IDENTITY));
  EXPECT_EQ(live.id, named.id);
  EXPECT_EQ(2, named.links);
}

TEST_F(LogFileTest, RepeatsBecomeANoteInFrontOfTheNextDifferentLine) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  for (int i = 0; i < 3; ++i) ov_log("same");
  EXPECT_EQ(Lines{"LOG same"}, messages(content("app.log")));
  ov_log("other");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other"}),
            messages(content("app.log")));
  ov_log("third");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other", "LOG third"}),
            messages(content("app.log")));
}

TEST_F(LogFileTest, MessagesOfDifferentLevelsAreDifferent) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_err("same");
  ov_log("same");
  EXPECT_EQ((Lines{"LOG same", "ERR same", "LOG same"}), messages(content("app.log")));
}

TEST_F(LogFileTest, LongMessageLosesItsTail) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("%s", std::string(5000, 'x').c_str());
  EXPECT_EQ(Lines{"LOG " + std::string(4089, 'x')}, messages(content("app.log")));
}

TEST_F(LogFileTest, CallerErrorsAreTheSameAfterALine) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov::set_caller_error(0);
  errno = 2;
  ov_log("one");
  EXPECT_EQ(0u, ov::caller_error());
  EXPECT_EQ(2, errno);
  ov::set_caller_error(183);
  errno = 0;
  ov_log("two");
  ov_log_flush();
  EXPECT_EQ(183u, ov::caller_error());
  EXPECT_EQ(0, errno);
}

TEST_F(LogFileTest, DebugLinesNeedTheFlag) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_dbg("lost");
  ov_dbg_set(1);
  ov_dbg("kept");
  EXPECT_EQ(Lines{"DBG kept"}, messages(content("app.log")));
}

TEST_F(LogFileTest, LogIsContinuedByTheNextOne) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("one");
  ov_log_cleanup();
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("two");
  EXPECT_EQ((Lines{"LOG one", "LOG two"}), messages(content("app.log")));
  EXPECT_EQ("0", digits());
}

TEST_F(LogFileTest, PendingRepeatsOutliveTheLogAndAreNotWrittenAtItsEnd) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_log("same");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG same"}, messages(content("app.log")));
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_log("other");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other"}),
            messages(content("app.log")));
}

TEST_F(LogFileTest, SecondInitialisationIsIgnored) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  EXPECT_EQ(0, ov_log_init(2, path("other.log").c_str()));
  EXPECT_EQ(0, ov_log_init(3, nullptr));
  EXPECT_EQ(0, ov_log_init_function(nullptr));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, messages(content("app.log")));
  EXPECT_FALSE(std::filesystem::exists(TempFolder::native(path("other.0.log"))));
}

TEST_F(LogFileTest, Mode3IsRefusedAndAllOthersMeanTheSame) {
  EXPECT_EQ(OV_EINVAL, ov_log_init(3, path().c_str()));
  EXPECT_EQ(OV_EINVAL, ov_log_msg(OV_LEVEL_ERR, "not set up"));
  for (const int32_t mode : {0, 1, 2, 4, -1}) {
    EXPECT_EQ(0, ov_log_init(mode, path().c_str())) << mode;
    ov_log("mode %d", mode);
    ov_log_cleanup();
  }
  EXPECT_EQ(5u, messages(content("app.log")).size());
}

TEST_F(LogFileTest, BadPathLeavesTheLogSetUpWithoutAFile) {
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

TEST_F(LogFileTest, PathOf519BytesIsTheLongest) {
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

TEST_F(LogFileTest, MissingDirectoryIsToldOnStandardError) {
  testing::internal::CaptureStderr();
  EXPECT_NE(0, ov_log_init(2, path("none/app.log").c_str()));
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, told.find("Error opening log directory " + path("none"))) << told;
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "dropped"));
}

TEST_F(LogFileTest, FileThatCannotBeOpenedIsToldOnStandardErrorAndGives22) {
  std::filesystem::create_directory(TempFolder::native(generation(0)));
  testing::internal::CaptureStderr();
  EXPECT_EQ(OV_EINVAL, ov_log_init(2, path().c_str()));
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, told.find("Cannot open log file: " + generation(0))) << told;
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "dropped"));
}

std::string without_returns(std::string text) {
  std::erase(text, '\r');
  return text;
}

TEST_F(LogFileTest, DashLogsToStandardErrorWithoutStamps) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(0, ov_log_init(2, "-"));
  ov_log("one");
  ov_log("one");
  ov_err("two");
  ov_log_cleanup();
  ov_log("lost");
  EXPECT_EQ("LOG one\nERR two\n", without_returns(testing::internal::GetCapturedStderr()));
}

TEST_F(LogFileTest, EchoGoesUpToItsLevelAndEndsWithTheLog) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_dbg_set(1);
  testing::internal::CaptureStderr();
  ov_err("not yet");
  ov_log_set_echo(OV_LEVEL_LOG);
  ov_err("e");
  ov_log("l");
  ov_dbg("d");
  ov_log_cleanup();
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_err("no more");
  EXPECT_EQ("ERR e\nLOG l\n", without_returns(testing::internal::GetCapturedStderr()));
  EXPECT_EQ((Lines{"ERR not yet", "ERR e", "LOG l", "DBG d", "ERR no more"}),
            messages(content("app.log")));
}

TEST_F(LogFileTest, BackslashesBecomeSlashes) {
  std::string windows = path();
  std::replace(windows.begin() + static_cast<std::ptrdiff_t>(windows.rfind('/')), windows.end(),
               '/', '\\');
  ASSERT_EQ(0, ov_log_init(2, windows.c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, messages(content("app.log")));
}

TEST_F(LogFileTest, SizeSuffixSetsTheLimit) {
  make(0, 2 * kMebibyte - 1);
  EXPECT_EQ("0", target("app.log:2"));
  std::filesystem::resize_file(TempFolder::native(generation(0)), 2 * kMebibyte);
  EXPECT_EQ("1", target("app.log:2"));
}

TEST_F(LogFileTest, SizeSuffixOf0OrTooLargeIsCutAndKeepsTheLimit) {
  for (const char* suffix : {":0", ":000", ":536870912", ":99999999999999999999999999"}) {
    make(0, 10 * kMebibyte - 1);
    EXPECT_EQ("0", target(std::string("app.log") + suffix)) << suffix;
    make(0, 10 * kMebibyte);
    EXPECT_EQ("1", target(std::string("app.log") + suffix)) << suffix;
    std::filesystem::remove(TempFolder::native(generation(1)));
  }
}

// A log of its own: the process's one has been given a limit before.
TEST_F(LogFileTest, LimitThatNobodySetIs10Mebibytes) {
  for (const char* name : {"app.log", "app.log:0"}) {
    for (const auto& [size, expected] :
         {std::pair{10 * kMebibyte - 1, "0"}, {10 * kMebibyte, "01"}}) {
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

TEST_F(LogFileTest, WhatFollowsTheDigitsOfTheSuffixStays) {
  ASSERT_EQ(0, ov_log_init(2, path("app:5.log").c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, messages(content("app.0.log")));
}

TEST_F(LogFileTest, ColonWithoutDigitsIsPartOfTheName) {
  ASSERT_EQ(0, ov_log_init(2, path("app.log:x").c_str()));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, messages(content("app.0.log:x")));
}

TEST_F(LogFileTest, SetterOfTheLimitCountsInMebibytes) {
  make(0, 3 * kMebibyte);
  ov_log_set_logfile_size(4);
  EXPECT_EQ("0", target());
  ov_log_set_logfile_size(4096);
  EXPECT_EQ("0", target());
  make(0, 3 * kMebibyte);
  ov_log_set_logfile_size(3);
  EXPECT_EQ("1", target());
}

TEST_F(LogFileTest, LimitsFrom2048AndBelow0AreBeyondAnyFile) {
  for (const int32_t size : {2048, 4095, -1, INT32_MIN + 4095}) {
    make(0, 3000 * kMebibyte);
    ov_log_set_logfile_size(size);
    ASSERT_EQ(0, ov_log_init(2, path().c_str()));
    EXPECT_EQ("0", digits()) << size;
    ov_log_cleanup();
  }
}

TEST_F(LogFileTest, LimitOf0EndsAfterOneTurnOfTheRing) {
  ov_log_set_logfile_size(0);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("still written");
  EXPECT_EQ(Lines{"LOG still written"}, messages(content("app.log")));
  EXPECT_EQ(Lines{"LOG still written"}, messages(content("app.0.log")));
}

TEST_F(LogFileTest, WritingResumesBeforeTheGap) {
  for (int digit = 0; digit < 9; ++digit) make(digit);
  EXPECT_EQ("8", target());
  EXPECT_FALSE(std::filesystem::exists(TempFolder::native(path())));
}

TEST_F(LogFileTest, ZeroAndNineResumeInZero) {
  make(0);
  make(9);
  EXPECT_EQ("0", target());
}

TEST_F(LogFileTest, FullGenerationHandsOverToTheNextAndTheGapMovesOn) {
  for (int digit = 0; digit < 9; ++digit) make(digit, kMebibyte);
  ov_log_set_logfile_size(1);
  EXPECT_EQ("9", target());
  EXPECT_EQ("123456789", digits());
  EXPECT_EQ(content("app.9.log"), content("app.log"));
}

TEST_F(LogFileTest, NineIsFollowedByZeroAndOneIsDeleted) {
  for (int digit = 1; digit < 10; ++digit) make(digit, kMebibyte);
  ov_log_set_logfile_size(1);
  EXPECT_EQ("0", target());
  EXPECT_EQ("023456789", digits());
}

TEST_F(LogFileTest, RunningLogRotatesWhenItIsFull) {
  ov_log_set_logfile_size(1);
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  const std::string filler(1000, 'x');
  int count = 0;
  while (digits() == "0" && count < 2000) ov_log("%05d %s", count++, filler.c_str());
  EXPECT_EQ("01", digits());
  ov_log("behind the turn");
  ov_log_cleanup();
  const Lines first = messages(content("app.0.log"));
  EXPECT_EQ(static_cast<size_t>(count), first.size());
  EXPECT_EQ(Lines{"LOG behind the turn"}, messages(content("app.log")));
  const uint64_t size = std::filesystem::file_size(TempFolder::native(generation(0)));
  EXPECT_LE(kMebibyte, size);
  EXPECT_GT(kMebibyte + 65536 + 4096 + 256, size);
}

TEST_F(LogFileTest, RingHoldsNineFilesAtMostAndTheNameFollowsTheLiveOne) {
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

TEST_F(LogFileTest, ColonOfADriveIsNoSuffix) {
  const std::string stem = "C:5-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log").c_str()));
  ov_log("drive");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG drive"}, messages(TempFolder::read(whole + ".0.log")));
  for (const char* end : {".log", ".0.log"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
}

TEST_F(LogFileTest, BareNameGoesToTheDefaultDirectoryAndKeepsItsSuffix) {
  const std::string stem = "ov-log-test-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log").c_str()));
  ov_log("bare");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG bare"}, messages(TempFolder::read(whole + ".0.log")));
  EXPECT_EQ(Lines{"LOG bare"}, messages(TempFolder::read(whole + ".log")));
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log:5").c_str()));
  ov_log("suffix");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG suffix"}, messages(TempFolder::read(whole + ".0.log:5")));
  for (const char* end : {".log", ".0.log", ".log:5", ".0.log:5"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
}

TEST_F(LogFileTest, SuffixOfABareNameSetsTheLimitAllTheSame) {
  const std::string stem = "ov-log-limit-" + std::to_string(ov::this_process());
  const std::string whole = default_directory() + "/" + stem;
  ASSERT_EQ(0, ov_log_init(2, (stem + ".log:5").c_str()));
  ov_log_cleanup();
  // On Windows itself the part behind the colon is a stream of the file that is named before it.
  for (const char* end : {".log:5", ".0.log:5", ".log", ".0.log"}) {
    std::filesystem::remove(TempFolder::native(whole + end));
  }
  // The limit outlives the log that was given it.
  make(0, 5 * kMebibyte - 1);
  EXPECT_EQ("0", target());
  make(0, 5 * kMebibyte);
  EXPECT_EQ("1", target());
}

TEST_F(LogFileTest, ThreadsWriteWholeLinesAcrossRotations) {
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
    for (const std::string& line : messages(TempFolder::read(generation(digit - '0')))) {
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

TEST_F(LogFileTest, RepeatsOfManyThreadsAreAllCounted) {
  constexpr int kThreadCount = 8;
  constexpr int kLineCount = 500;
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreadCount; ++i) {
    threads.emplace_back([] {
      for (int n = 0; n < kLineCount; ++n) ov_log("same");
    });
  }
  for (std::thread& thread : threads) thread.join();
  ov_log("end");
  EXPECT_EQ(
      (Lines{"LOG same",
             "Last message repeated " + std::to_string(kThreadCount * kLineCount - 1) + " times",
             "LOG end"}),
      messages(content("app.log")));
}

TEST_F(LogFileTest, LogMayBeClosedAndOpenedWhileThreadsWrite) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 300; ++n) ov_log("%d %d", i, n);
    });
  }
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(0, ov_log_init(2, path().c_str()));
    ov_log_flush();
    ov_log_set_echo(-1);
    ov_log_cleanup();
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& line : messages(content("app.log"))) {
    EXPECT_TRUE(std::regex_match(line, std::regex("LOG \\d \\d+"))) << line;
  }
}

}  // namespace
