#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "runtime/faults/exception_codes.h"
#include "runtime/ov_errors.h"
#include "tests/support/runtime/captured_log.h"

namespace {

struct PrivateCode {
  int32_t code;
  const char* name;
  const char* message;
};

const PrivateCode kPrivateCodes[] = {
    {28672, "EDOCROOT", "Invalid doc root path"},
    {28673, "ETOKENIZER", "Invalid command or token separator mismatch"},
    {28674, "EBASENAME", "Base file/directory name not found in path"},
    {28675, "EPATHMATCH", "File/directory path mismatch"},
    {28676, "EILLUTFSTR", "Illegal UTF string"},
    {28677, "EBUFFER", "Insufficient buffer space"},
    {28678, "EDIREND", "End or directory reached"},
    {28679, "ELIBERR", "Library open/close failed"},
    {28680, "ELIBMODERR", "Library module loading failed"},
    {28681, "EUUID", "Could not create UUID string"},
    {28682, "EXMLPARSER", "Could not parse xml file for configs"},
    {28683, "ELOCALE", "Could not read locale info"},
    {28684, "EMD5SUM", "Could not compute md5sum"},
    {28685, "EHASHSUM", "Could not compute SHA hash"},
    {28686, "ELOG", "Could not log message"},
    {28687, "EUNAME", "Invalid user name"},
    {28688, "EUACPARSE", "Parse error inside UAC"},
    {28689, "ENOXFER", "No transmitting xfer found"},
    {28690, "EUNIMPL", "Unimplemented function"},
    {28691, "EINTERNAL1", "Internal error"},
    {28692, "EEND", "Reached end"},
    {28693, "ESTORAGEINACCESSIBLE", "Storage inaccessible"},
    {28694, "EBADPATHNAME", "Bad pathname"},
    {28695, "ELICENSE", "Invalid license"},
    {28696, "EDDBYLICENSE", "Disabled by license"},
    {28697, "ECONNINSECURE", "Connection insecure"},
    {28698, "EFILENOTVALID", "File not valid"},
    {28699, "ENOTENABLED", "Not enabled"},
    {28700, "ENOTPRESENT", "Not present"},
    {28701, "ELOCKED", "Already locked"},
    {28702, "ELOCKINVAL", "Invalid lock"},
    {28703, "ELOCKSKEW", "Lock time skew detected"},
    {28704, "EWRONGCHANNEL", "Incorrect channel accessed"},
    {28705, "EABORTSESSION", "User aborted session"},
    {28706, "EBADTOKEN", "Bad token"},
    {28707, "EILLEGALCHAR", "Illegal character(s) in path name"},
    {28708, "EDOCROOTMISSINGRESTR", "Missing docroot restriction"},
    {28709, "EDOCROOTFAILEDRESTR", "Failed docroot restriction check"},
    {28710, "EEXPIRED", "Expired"},
};

const std::map<int32_t, std::string> kPlatformNames = {
    {0, "OK"},           {1, "EPERM"},          {2, "ENOENT"},          {3, "ESRCH"},
    {4, "ENFILE"},       {5, "EACCES"},         {6, "EBADF"},           {8, "ENOMEM"},
    {14, "ENOSPC"},      {21, "ENOTREADY"},     {22, "EINVAL"},         {31, "EIO"},
    {41, "ENOTEMPTY"},   {50, "ENOTSUP"},       {122, "ERANGE"},        {183, "EEXIST"},
    {206, "EPATHMAX"},   {267, "ENOTDIR"},      {10035, "EWOULDBLOCK"}, {10036, "EINPROGRESS"},
    {10040, "EMSGSIZE"}, {10048, "EADDRINUSE"}, {10054, "ECONNRESET"},  {10055, "ENOBUFS"},
    {10056, "EISCONN"},  {10057, "ENOTCONN"},   {10060, "ETIMEDOUT"},   {10061, "ECONNREFUSED"},
};

TEST(ErrorsTest, TableHoldsTheMessagesOfThePrivateCodes) {
  EXPECT_EQ(39, g_ov_err_count);
  ASSERT_EQ(39u, std::size(kPrivateCodes));
  for (const PrivateCode& row : kPrivateCodes) {
    EXPECT_STREQ(row.message, g_ov_err_table[row.code - 28672]) << row.code;
  }
}

TEST(ErrorsTest, PrivateCodesHaveTheirNames) {
  for (const PrivateCode& row : kPrivateCodes) EXPECT_STREQ(row.name, ov_errno2str(row.code));
  EXPECT_STREQ("ERR_END", ov_errno2str(28711));
}

TEST(ErrorsTest, EveryOtherCodeHasTheNameOfThePlatformTableOrNone) {
  for (int32_t code = -10; code < 70000; ++code) {
    if (code >= 28672 && code <= 28711) continue;
    const auto row = kPlatformNames.find(code);
    const char* expected = row == kPlatformNames.end() ? "OV_UNKNOWN_ERRNO" : row->second.c_str();
    ASSERT_STREQ(expected, ov_errno2str(code)) << code;
  }
  EXPECT_STREQ("OV_UNKNOWN_ERRNO", ov_errno2str(INT32_MIN));
  EXPECT_STREQ("OV_UNKNOWN_ERRNO", ov_errno2str(INT32_MAX));
}

TEST(ErrorsTest, NamedConstantsAreThePlatformTablesNumbers) {
  EXPECT_STREQ("EBADF", ov_errno2str(OV_EBADF));
  EXPECT_STREQ("ENOMEM", ov_errno2str(OV_ENOMEM));
  EXPECT_STREQ("EINVAL", ov_errno2str(OV_EINVAL));
  EXPECT_STREQ("ERANGE", ov_errno2str(OV_ERANGE));
  EXPECT_STREQ("EPATHMAX", ov_errno2str(OV_EPATHMAX));
  EXPECT_STREQ("EBUFFER", ov_errno2str(OV_EBUFFER));
  EXPECT_STREQ("ELOG", ov_errno2str(OV_ELOG));
  EXPECT_STREQ("EEXPIRED", ov_errno2str(OV_EEXPIRED));
}

TEST(ErrorsTest, MessageOfAPrivateCodeComesFromTheTable) {
  char text[64];
  for (const PrivateCode& row : kPrivateCodes) {
    EXPECT_EQ(0, ov_platform_errstr(row.code, text, sizeof text));
    EXPECT_STREQ(row.message, text);
  }
}

TEST(ErrorsTest, MessageOfAPrivateCodeMayBeCut) {
  char text[] = "######";
  EXPECT_EQ(0, ov_platform_errstr(28677, text, 4));
  EXPECT_STREQ("Ins", text);
  EXPECT_EQ(0, ov_platform_errstr(28677, text, 1));
  EXPECT_STREQ("", text);
}

TEST(ErrorsTest, MissingBufferGives22) {
  char text[] = "#";
  EXPECT_EQ(OV_EINVAL, ov_platform_errstr(2, nullptr, 10));
  EXPECT_EQ(OV_EINVAL, ov_platform_errstr(2, text, 0));
  EXPECT_EQ(OV_EINVAL, ov_platform_errstr(28677, text, 0));
  EXPECT_STREQ("#", text);
}

TEST(ErrorsTest, PlatformMessageThatDoesNotFitGives122) {
  char text[4] = "";
  EXPECT_EQ(OV_ERANGE, ov_platform_errstr(2, text, sizeof text));
}

#ifndef _WIN32
// Line ends that the native form of the platform delivers and Windows does not.
TEST(ErrorsTest, LineEndRulesGoByTheLastBytes) {
  const std::map<int32_t, std::string> expected = {
      {3, "line feed only"}, {4, "none"}, {5, "a\n"}, {6, "\r\n"}, {9, "ab"}};
  for (const auto& [code, message] : expected) {
    char text[64];
    EXPECT_EQ(0, ov_platform_errstr(code, text, sizeof text));
    EXPECT_EQ(message, text);
  }
}
#endif

TEST(ErrorsTest, InlineFormGivesTheBufferOrAFixedText) {
  char text[64] = "";
  EXPECT_EQ(text, ov_platform_errstr_inline(28710, text, sizeof text));
  EXPECT_STREQ("Expired", text);
  EXPECT_STREQ("Could not retrieve error message", ov_platform_errstr_inline(2, text, 0));
  EXPECT_STREQ("Could not retrieve error message", ov_platform_errstr_inline(2, nullptr, 9));
}

TEST(ErrorsTest, OnlyTwoCodesAreInterruptedCalls) {
  std::set<int32_t> interrupted;
  for (int32_t code = -10; code < 30000; ++code) {
    if (ov_err_is_eintr(code)) interrupted.insert(code);
  }
  EXPECT_EQ((std::set<int32_t>{4, 10004}), interrupted);
}

const std::map<int32_t, std::string> kSignals = {{2, "SIGINT"},   {4, "SIGILL"},   {8, "SIGFPE"},
                                                 {11, "SIGSEGV"}, {15, "SIGTERM"}, {22, "SIGABRT"}};

TEST(SignalsTest, NumbersHaveThePlatformsNames) {
  for (int32_t number = -5; number < 100; ++number) {
    const auto row = kSignals.find(number);
    EXPECT_STREQ(row == kSignals.end() ? "UNKNOWN SIGNAL" : row->second.c_str(),
                 ov_signal2str(number));
  }
}

TEST(SignalsTest, NamesWithAndWithoutPrefixInEitherCaseGiveTheNumber) {
  for (const auto& [number, name] : kSignals) {
    EXPECT_EQ(number, ov_str2signal(name.c_str()));
    EXPECT_EQ(number, ov_str2signal(name.substr(3).c_str()));
    std::string lower = name;
    for (char& c : lower) c = static_cast<char>(c - 'A' + 'a');
    EXPECT_EQ(number, ov_str2signal(lower.c_str()));
    EXPECT_EQ(number, ov_str2signal(lower.substr(3).c_str()));
  }
}

TEST(SignalsTest, UnknownNameIsLoggedAndGivesMinus1) {
  ov::CapturedLog log;
  for (const char* name : {"SIGKILL", "", "SIG", "SIGSEG", "SEGVX", "SIGSIGSEGV", "%s"}) {
    EXPECT_EQ(-1, ov_str2signal(name));
    EXPECT_EQ(std::vector<std::string>{std::string("ERR unrecognized signame ") + name},
              log.take());
  }
  EXPECT_EQ(-1, ov_str2signal(nullptr));
  EXPECT_EQ(std::vector<std::string>{"ERR unrecognized signame (null)"}, log.take());
}

const std::vector<std::string> kExceptions = {"ACCESS_VIOLATION",
                                              "ARRAY_BOUNDS_EXCEEDED",
                                              "BREAKPOINT",
                                              "DATATYPE_MISALIGNMENT",
                                              "FLT_DENORMAL_OPERAND",
                                              "FLT_DIVIDE_BY_ZERO",
                                              "FLT_INEXACT_RESULT",
                                              "FLT_INVALID_OPERATION",
                                              "FLT_OVERFLOW",
                                              "FLT_STACK_CHECK",
                                              "FLT_UNDERFLOW",
                                              "ILLEGAL_INSTRUCTION",
                                              "IN_PAGE_ERROR",
                                              "INT_DIVIDE_BY_ZERO",
                                              "INT_OVERFLOW",
                                              "INVALID_DISPOSITION",
                                              "NONCONTINUABLE_EXCEPTION",
                                              "PRIV_INSTRUCTION",
                                              "SINGLE_STEP",
                                              "STACK_OVERFLOW"};

TEST(ExceptionsTest, TableHoldsTheTwentyNames) {
  std::vector<std::string> names;
  std::set<uint32_t> codes;
  for (const ov::ExceptionCode& row : ov::kExceptionCodes) {
    names.emplace_back(row.name);
    codes.insert(row.code);
  }
  EXPECT_EQ(kExceptions, names);
  EXPECT_EQ(20u, codes.size());
}

TEST(ExceptionsTest, NamesAndCodesLeadToEachOther) {
  for (const ov::ExceptionCode& row : ov::kExceptionCodes) {
    EXPECT_STREQ(row.name, ov_exc2str(row.code));
    EXPECT_EQ(row.code, ov_str2exc(row.name));
    EXPECT_EQ(row.code, ov_str2exc((std::string("EXCEPTION_") + row.name).c_str()));
  }
  EXPECT_EQ(0x80000003u, ov_str2exc("exception_breakpoint"));
  EXPECT_EQ(0xc0000005u, ov_str2exc("access_violation"));
}

TEST(ExceptionsTest, UnknownOnesHaveAFixedNameAndAllOnesWithNoLogLine) {
  ov::CapturedLog log;
  EXPECT_STREQ("UNKNOWN EXCEPTION", ov_exc2str(0));
  EXPECT_STREQ("UNKNOWN EXCEPTION", ov_exc2str(0xe06d7363));
  for (const char* name : {"", "EXCEPTION_", "BREAKPOINTS", "EXCEPTIONBREAKPOINT"}) {
    EXPECT_EQ(0xffffffffu, ov_str2exc(name));
  }
  EXPECT_EQ(0xffffffffu, ov_str2exc(nullptr));
  EXPECT_TRUE(log.take().empty());
}

}  // namespace
