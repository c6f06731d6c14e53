// The system's messages, and a system that has none.
#include <gtest/gtest.h>

#include <windows.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "runtime/ov_errors.h"
#include "tests/support/runtime/real_call_win.h"

namespace {

// FormatMessageW fails with this error, or works when it is negative.
int format_error = -1;

DWORD WINAPI testFormatMessageW(DWORD flags, LPCVOID source, DWORD id, DWORD language,
                                LPWSTR buffer, DWORD size, va_list* arguments) {
  EXPECT_EQ(4864u, flags);
  EXPECT_EQ(nullptr, source);
  EXPECT_EQ(1024u, language);
  EXPECT_EQ(4096u, size);
  if (format_error >= 0) {
    SetLastError(static_cast<DWORD>(format_error));
    return 0;
  }
  return ov::real_call<decltype(&FormatMessageW)>(L"kernel32.dll", "FormatMessageW")(
      flags, source, id, language, buffer, size, arguments);
}

}  // namespace

extern "C" {
decltype(&FormatMessageW) __imp_FormatMessageW = &testFormatMessageW;
}

namespace {

TEST(SystemMessagesTest, MessageIsTheSystemsWithoutItsLineEnd) {
  format_error = -1;
  for (const int32_t code : {2, 5, 87, 183}) {
    wchar_t* text = nullptr;
    const DWORD length = testFormatMessageW(4864, nullptr, static_cast<DWORD>(code), 1024,
                                            reinterpret_cast<wchar_t*>(&text), 4096, nullptr);
    ASSERT_LT(2u, length);
    std::string expected;
    for (DWORD i = 0; i + 2 < length; ++i) expected += static_cast<char>(text[i]);
    LocalFree(text);
    char buffer[512];
    EXPECT_EQ(0, ov_platform_errstr(code, buffer, sizeof buffer));
    EXPECT_EQ(expected, buffer);
  }
}

TEST(SystemMessagesTest, MessageWithPlaceholdersKeepsThem) {
  format_error = -1;
  char buffer[512];
  ASSERT_EQ(0, ov_platform_errstr(193, buffer, sizeof buffer));
  EXPECT_NE(nullptr, std::strstr(buffer, "%1")) << buffer;
}

TEST(SystemMessagesTest, FailureGivesTheSystemsCodeOrElseErrno) {
  char buffer[512];
  format_error = 317;
  EXPECT_EQ(317, ov_platform_errstr(2, buffer, sizeof buffer));
  EXPECT_STREQ("Could not retrieve error message",
               ov_platform_errstr_inline(2, buffer, sizeof buffer));
  format_error = 0;
  errno = 12;
  EXPECT_EQ(12, ov_platform_errstr(2, buffer, sizeof buffer));
}

}  // namespace
