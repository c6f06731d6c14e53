#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_threads.h"
#include "tests/support/runtime/caller_state.h"
#include "tests/support/runtime/log_file_fixture.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;
using ov::TempFolder;
using LogFileTest = ov::LogFileFixture;

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
  EXPECT_EQ(Lines{"LOG text"}, ov::log_messages(content("app.log")));
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
  EXPECT_EQ(Lines{"LOG same"}, ov::log_messages(content("app.log")));
  ov_log("other");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other"}),
            ov::log_messages(content("app.log")));
  ov_log("third");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other", "LOG third"}),
            ov::log_messages(content("app.log")));
}

TEST_F(LogFileTest, MessagesOfDifferentLevelsAreDifferent) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_err("same");
  ov_log("same");
  EXPECT_EQ((Lines{"LOG same", "ERR same", "LOG same"}), ov::log_messages(content("app.log")));
}

TEST_F(LogFileTest, LongMessageLosesItsTail) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("%s", std::string(5000, 'x').c_str());
  EXPECT_EQ(Lines{"LOG " + std::string(4089, 'x')}, ov::log_messages(content("app.log")));
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
  EXPECT_EQ(Lines{"DBG kept"}, ov::log_messages(content("app.log")));
}

TEST_F(LogFileTest, LogIsContinuedByTheNextOne) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("one");
  ov_log_cleanup();
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("two");
  EXPECT_EQ((Lines{"LOG one", "LOG two"}), ov::log_messages(content("app.log")));
  EXPECT_EQ("0", digits());
}

TEST_F(LogFileTest, PendingRepeatsOutliveTheLogAndAreNotWrittenAtItsEnd) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_log("same");
  ov_log_cleanup();
  EXPECT_EQ(Lines{"LOG same"}, ov::log_messages(content("app.log")));
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  ov_log("same");
  ov_log("other");
  EXPECT_EQ((Lines{"LOG same", "Last message repeated 2 times", "LOG other"}),
            ov::log_messages(content("app.log")));
}

TEST_F(LogFileTest, SecondInitialisationIsIgnored) {
  ASSERT_EQ(0, ov_log_init(2, path().c_str()));
  EXPECT_EQ(0, ov_log_init(2, path("other.log").c_str()));
  EXPECT_EQ(0, ov_log_init(3, nullptr));
  EXPECT_EQ(0, ov_log_init_function(nullptr));
  ov_log("text");
  EXPECT_EQ(Lines{"LOG text"}, ov::log_messages(content("app.log")));
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
  EXPECT_EQ(5u, ov::log_messages(content("app.log")).size());
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
            ov::log_messages(content("app.log")));
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
      ov::log_messages(content("app.log")));
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
  for (const std::string& line : ov::log_messages(content("app.log"))) {
    EXPECT_TRUE(std::regex_match(line, std::regex("LOG \\d \\d+"))) << line;
  }
}

}  // namespace
