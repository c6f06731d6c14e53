#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "tests/support/runtime/caller_state.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Lines = std::vector<std::string>;

const int32_t kFirstLogEnabled = g_log_enabled;
const int32_t kFirstDebugEnabled = g_debug_enabled;
const int32_t kFirstDbgLevel = g_dbg_level;

class LogTest : public testing::Test {
 protected:
  void SetUp() override {
    ov_log_cleanup();
    ov_log_set(1);
    ov_dbg_set(0);
    ov_dbg_set_all(0);
  }
  void TearDown() override { SetUp(); }
};

TEST_F(LogTest, FlagsStartAtTheirDocumentedValues) {
  EXPECT_EQ(1, kFirstLogEnabled);
  EXPECT_EQ(0, kFirstDebugEnabled);
  EXPECT_EQ(0, kFirstDbgLevel);
}

TEST_F(LogTest, SettersWriteTheExportedFlags) {
  ov_log_set(7);
  ov_dbg_set(8);
  ov_dbg_set_all(9);
  EXPECT_EQ(7, g_log_enabled);
  EXPECT_EQ(7, ov_log_get());
  EXPECT_EQ(8, g_debug_enabled);
  EXPECT_EQ(8, ov_dbg_get());
  EXPECT_EQ(9, g_dbg_level);
}

TEST_F(LogTest, MessageBeforeInitialisationGives22AndChangesNothing) {
  ov::set_caller_error(77);
  errno = 5;
  EXPECT_EQ(OV_EINVAL, ov_log_msg(OV_LEVEL_ERR, "lost"));
  EXPECT_EQ(0, ov_log("lost"));
  EXPECT_EQ(0, ov_err("lost"));
  EXPECT_EQ(77u, ov::caller_error());
  EXPECT_EQ(5, errno);
}

TEST_F(LogTest, SwitchedOffMessageBeforeInitialisationGives0) {
  ov_log_set(0);
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "lost"));
  ov_log_set(1);
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_DBG, "lost"));
}

TEST_F(LogTest, SinkGetsLevelNameAndOneBlankWithNoLineEnd) {
  ov::CapturedLog log;
  EXPECT_EQ(0, ov_err("a %d", 1));
  EXPECT_EQ(0, ov_log("b %s", "two"));
  EXPECT_EQ(0, ov_dbg("c"));
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_LOG, "d"));
  EXPECT_EQ((Lines{"ERR a 1", "LOG b two", "DBG c", "LOG d"}), log.take());
}

TEST_F(LogTest, SinkGetsRepeatedMessagesEach) {
  ov::CapturedLog log;
  for (int i = 0; i < 3; ++i) ov_log("same");
  EXPECT_EQ((Lines{"LOG same", "LOG same", "LOG same"}), log.take());
}

TEST_F(LogTest, LevelsOutOfRangeReadAsTheNearest) {
  ov::CapturedLog log;
  EXPECT_EQ(0, ov_log_msg(3, "high"));
  EXPECT_EQ(0, ov_log_msg(INT32_MAX, "highest"));
  EXPECT_EQ(0, ov_log_msg(-1, "low"));
  EXPECT_EQ(0, ov_log_msg(INT32_MIN, "lowest"));
  EXPECT_EQ((Lines{"DBG high", "DBG highest", "ERR low", "ERR lowest"}), log.take());
}

TEST_F(LogTest, MasterSwitchSilencesEveryLevel) {
  ov::CapturedLog log;
  ov_log_set(0);
  ov_err("e");
  ov_log("l");
  ov_dbg("d");
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "m"));
  ov_log_set(1);
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(LogTest, DebugFlagGatesLevel2WhateverTheVerbosity) {
  ov::CapturedLog log;
  ov_dbg_set(0);
  ov_dbg_set_all(3);
  EXPECT_EQ(0, ov_dbg("d"));
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_DBG, "m"));
  EXPECT_EQ(0, ov_log_msg(4, "m"));
  EXPECT_EQ(Lines{}, log.take());
  ov_dbg_set(1);
  ov_dbg_set_all(0);
  ov_dbg("d");
  EXPECT_EQ(Lines{"DBG d"}, log.take());
}

TEST_F(LogTest, DebugMacroEvaluatesNothingBelowLevel2) {
  ov::CapturedLog log;
  int evaluated = 0;
  ov_dbg_set_all(1);
  OV_DEBUG("%d", ++evaluated);
  EXPECT_EQ(0, evaluated);
  ov_dbg_set_all(2);
  OV_DEBUG("%d", ++evaluated);
  EXPECT_EQ(1, evaluated);
  EXPECT_EQ(Lines{"DBG 1"}, log.take());
}

TEST_F(LogTest, CallerErrorsAreTheSameAfterALogCall) {
  ov::CapturedLog log;
  for (const uint32_t error : {0u, 2u, 183u}) {
    for (const int number : {0, 2, 34}) {
      ov::set_caller_error(error);
      errno = number;
      ov_log("text");
      EXPECT_EQ(error, ov::caller_error());
      EXPECT_EQ(number, errno);
    }
  }
}

void spoilErrors(const char*) {
  ov::set_caller_error(1234);
  errno = 33;
}

TEST_F(LogTest, ErrorsSetByTheSinkDoNotReachTheCaller) {
  ASSERT_EQ(0, ov_log_init_function(&spoilErrors));
  ov::set_caller_error(0);
  errno = 2;
  ov_err("text");
  EXPECT_EQ(0u, ov::caller_error());
  EXPECT_EQ(2, errno);
}

TEST_F(LogTest, NullSinkGives122AndLeavesTheLogOff) {
  EXPECT_EQ(OV_ERANGE, ov_log_init_function(nullptr));
  EXPECT_EQ(OV_EINVAL, ov_log_msg(OV_LEVEL_ERR, "lost"));
}

TEST_F(LogTest, SecondInitialisationIsIgnored) {
  ov::CapturedLog log;
  EXPECT_EQ(0, ov_log_init_function(&spoilErrors));
  EXPECT_EQ(0, ov_log_init_function(nullptr));
  ov_log("still here");
  EXPECT_EQ(Lines{"LOG still here"}, log.take());
}

TEST_F(LogTest, CleanupEndsTheSinkAndAllowsAnother) {
  ov::CapturedLog log;
  ov_log_cleanup();
  EXPECT_EQ(OV_EINVAL, ov_log_msg(OV_LEVEL_ERR, "lost"));
  EXPECT_EQ(0, ov_log_init_function(&spoilErrors));
  EXPECT_EQ(0, ov_log_msg(OV_LEVEL_ERR, "to the other"));
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(LogTest, SinkTextIsCutAt4091Bytes) {
  ov::CapturedLog log;
  const std::string fits(4091, 'x');
  ov_log("%s", fits.c_str());
  ov_log("%sy", fits.c_str());
  EXPECT_EQ((Lines{"LOG " + fits, "LOG " + fits}), log.take());
}

TEST_F(LogTest, TextThatCannotBeFormattedGivesElog) {
  ov::CapturedLog log;
  const auto without_format_check = &ov_log_vmsg;
  va_list none = {};
  EXPECT_EQ(OV_ELOG, without_format_check(OV_LEVEL_LOG, nullptr, none));
  EXPECT_EQ(Lines{}, log.take());
}

TEST_F(LogTest, SinkMayLogItself) {
  static int depth;
  depth = 0;
  ASSERT_EQ(0, ov_log_init_function([](const char*) {
              if (++depth < 3) ov_log("again");
            }));
  ov_log("first");
  EXPECT_EQ(3, depth);
}

TEST_F(LogTest, ThreadsMayLogAtOnce) {
  ov::CapturedLog log;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 100; ++n) ov_log("thread %d line %d", i, n);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(800u, log.take().size());
}

int32_t formatList(char* dst, size_t size, const char* format, ...) OV_PRINTF(3, 4);
int32_t formatList(char* dst, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t result = ov_vsnprintf(dst, size, format, arguments);
  va_end(arguments);
  return result;
}

TEST(LogFormatTest, WholeTextGivesItsLength) {
  ov::CapturedLog log;
  char text[6];
  EXPECT_EQ(5, ov_snprintf(text, sizeof text, "%d%s", 12, "abc"));
  EXPECT_STREQ("12abc", text);
  EXPECT_EQ(5, formatList(text, sizeof text, "%d%s", 34, "abc"));
  EXPECT_STREQ("34abc", text);
  EXPECT_EQ(0, ov_snprintf(text, sizeof text, "%s", ""));
  EXPECT_STREQ("", text);
  EXPECT_EQ(Lines{}, log.take());
}

TEST(LogFormatTest, TruncationGivesSizeLess1AndADebugLine) {
  ov::CapturedLog log;
  char text[] = "######";
  EXPECT_EQ(3, ov_snprintf(text, 4, "%s", "abcd"));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ('#', text[4]);
  EXPECT_EQ(0, ov_snprintf(text, 1, "%s", "abcd"));
  EXPECT_STREQ("", text);
  EXPECT_EQ((Lines{"DBG Call to snprintf() lead to a truncation",
                   "DBG Call to snprintf() lead to a truncation"}),
            log.take());
}

TEST(LogFormatTest, TruncationOfTheListFormGivesSizeAndNoLine) {
  ov::CapturedLog log;
  char text[] = "######";
  EXPECT_EQ(4, formatList(text, 4, "%s", "abcd"));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ('#', text[4]);
  EXPECT_EQ(1, formatList(text, 1, "%s", "abcd"));
  EXPECT_EQ(Lines{}, log.take());
}

TEST(LogFormatTest, SizeZeroCountsAndLogsNothing) {
  ov::CapturedLog log;
  char text[] = "#";
  EXPECT_EQ(7, ov_snprintf(nullptr, 0, "%d", 1234567));
  EXPECT_EQ(7, formatList(nullptr, 0, "%d", 1234567));
  EXPECT_EQ(7, ov_snprintf(text, 0, "%d", 1234567));
  EXPECT_STREQ("#", text);
  EXPECT_EQ(Lines{}, log.take());
}

TEST(LogFormatTest, NullBufferOrFormatGivesLessThan0) {
  char text[4];
  const auto without_format_check = &ov_vsnprintf;
  va_list none = {};
  EXPECT_GT(0, ov_snprintf(nullptr, 4, "%s", "a"));
  EXPECT_GT(0, without_format_check(text, 4, nullptr, none));
}

}  // namespace
