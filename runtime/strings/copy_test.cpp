#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Lines = std::vector<std::string>;

TEST(StringsCopyTest, WholeTextGives0AndMovesThePosition) {
  char text[8] = "#######";
  size_t pos = 0;
  EXPECT_EQ(0, ov_str_to(text, "ab", sizeof text, &pos));
  EXPECT_EQ(2u, pos);
  EXPECT_EQ(0, ov_str_to(text, "cd", sizeof text, &pos));
  EXPECT_EQ(4u, pos);
  EXPECT_STREQ("abcd", text);
  EXPECT_EQ('#', text[5]);
}

TEST(StringsCopyTest, TextThatFillsTheBufferExactlyIsWhole) {
  char text[4];
  EXPECT_EQ(0, ov_str_ncpy(text, "abc", sizeof text));
  EXPECT_STREQ("abc", text);
}

TEST(StringsCopyTest, LongTextIsCutWith28677) {
  char text[3];
  EXPECT_EQ(OV_EBUFFER, ov_str_ncpy(text, "abcd", sizeof text));
  EXPECT_STREQ("ab", text);
  char one[1] = {'#'};
  EXPECT_EQ(OV_EBUFFER, ov_str_ncpy(one, "abcd", sizeof one));
  EXPECT_STREQ("", one);
}

TEST(StringsCopyTest, CutNeverLeavesHalfASequence) {
  char text[4];
  EXPECT_EQ(OV_EBUFFER, ov_str_ncpy(text, "ab\xc3\xa9", sizeof text));
  EXPECT_STREQ("ab", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncpy(text, "\xf0\x9f\x98\x80", sizeof text));
  EXPECT_STREQ("", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncpy(text, "a\xc3\xa9z", sizeof text));
  EXPECT_STREQ("a\xc3\xa9", text);
  size_t pos = 1;
  text[0] = 'x';
  EXPECT_EQ(OV_EBUFFER, ov_str_to(text, "\xe2\x82\xac", sizeof text, &pos));
  EXPECT_STREQ("x", text);
  EXPECT_EQ(1u, pos);
}

TEST(StringsCopyTest, SourceBoundIsHonouredWithoutATerminator) {
  const std::unique_ptr<char[]> source(new char[3]{'a', 'b', 'c'});
  char text[8];
  size_t pos = 0;
  EXPECT_EQ(0, ov_str_nto(text, source.get(), 3, sizeof text, &pos));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ(0, ov_str_nto(text, source.get(), 2, sizeof text, nullptr));
  EXPECT_STREQ("ab", text);
  EXPECT_EQ(0, ov_str_nto(text, source.get(), 0, sizeof text, nullptr));
  EXPECT_STREQ("", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_nto(text, source.get(), 3, 3, nullptr));
  EXPECT_STREQ("ab", text);
}

TEST(StringsCopyTest, SourceBoundMayHalveASequenceAndTheTextIsWhole) {
  char text[8] = "";
  EXPECT_EQ(0, ov_str_nto(text, "a\xc3\xa9", 2, sizeof text, nullptr));
  EXPECT_STREQ("a\xc3", text);
}

TEST(StringsCopyTest, SourceMayLieInTheBuffer) {
  char text[16] = "  abcdef ";
  EXPECT_EQ(0, ov_str_to(text, text + 2, sizeof text, nullptr));
  EXPECT_STREQ("abcdef ", text);
  EXPECT_EQ(0, ov_trimmed_str_to(text, text + 3, sizeof text, nullptr));
  EXPECT_STREQ("def", text);
  size_t pos = 1;
  EXPECT_EQ(0, ov_str_to(text, text, sizeof text, &pos));
  EXPECT_STREQ("ddef", text);
  EXPECT_EQ(0, ov_str_ncat(text, text, sizeof text));
  EXPECT_STREQ("ddefddef", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncat(text, text, sizeof text));
  EXPECT_STREQ("ddefddefddefdde", text);
}

TEST(StringsCopyTest, PositionAtTheEndClearsTheTextAndIsLogged) {
  ov::CapturedLog log;
  char text[4] = "abc";
  for (const size_t start : {size_t{4}, size_t{5}, SIZE_MAX}) {
    text[0] = 'a';
    size_t pos = start;
    EXPECT_EQ(OV_EINVAL, ov_str_to(text, "x", sizeof text, &pos));
    EXPECT_STREQ("", text);
    EXPECT_EQ(start, pos);
    const Lines lines = log.take();
    ASSERT_EQ(1u, lines.size());
    EXPECT_TRUE(lines[0].starts_with("LOG Warning: ov_str_to failure, args ")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with(" 4 " + std::to_string(static_cast<uint32_t>(start)) + " 'x'"))
        << lines[0];
  }
}

TEST(StringsCopyTest, NullArgumentsGive22) {
  ov::CapturedLog log;
  char text[4] = "abc";
  EXPECT_EQ(OV_EINVAL, ov_str_to(nullptr, "x", 4, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_str_to(text, nullptr, sizeof text, nullptr));
  EXPECT_STREQ("", text);
  const Lines lines = log.take();
  ASSERT_EQ(2u, lines.size());
  EXPECT_TRUE(lines[1].ends_with(" 4 0 '(null)'")) << lines[1];
}

TEST(StringsCopyTest, EmptyBufferIsLeftAlone) {
  ov::CapturedLog log;
  char text[] = "abc";
  EXPECT_EQ(OV_EINVAL, ov_str_ncpy(text, "x", 0));
  EXPECT_EQ(OV_EINVAL, ov_trimmed_str_to(text, "x", 0, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_str_printf_to(text, 0, nullptr, "%d", 1));
  EXPECT_STREQ("abc", text);
}

TEST(StringsCopyTest, WarningShowsAtMost256BytesOfTheSourceAndNothingBehindItsBound) {
  ov::CapturedLog log;
  const std::unique_ptr<char[]> source(new char[300]);
  std::fill_n(source.get(), 300, 'y');
  char text[1];
  size_t pos = 1;
  EXPECT_EQ(OV_EINVAL, ov_str_nto(text, source.get(), 300, sizeof text, &pos));
  EXPECT_EQ(OV_EINVAL, ov_str_nto(text, source.get(), 3, sizeof text, &pos));
  const Lines lines = log.take();
  ASSERT_EQ(2u, lines.size());
  EXPECT_TRUE(lines[0].ends_with(" '" + std::string(256, 'y') + "'"));
  EXPECT_TRUE(lines[1].ends_with(" 'yyy'"));
}

TEST(StringsCopyTest, NullSourceOfNcpyIsAnEmptyText) {
  ov::CapturedLog log;
  char text[4] = "abc";
  EXPECT_EQ(0, ov_str_ncpy(text, nullptr, sizeof text));
  EXPECT_STREQ("", text);
  EXPECT_EQ(Lines{}, log.take());
}

TEST(StringsCopyTest, NcatAppends) {
  char text[6] = "ab";
  EXPECT_EQ(0, ov_str_ncat(text, "cd", sizeof text));
  EXPECT_STREQ("abcd", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncat(text, "ef", sizeof text));
  EXPECT_STREQ("abcde", text);
}

TEST(StringsCopyTest, NcatOntoAFullBufferGives28677AndLeavesTheText) {
  char text[4] = "abc";
  EXPECT_EQ(OV_EBUFFER, ov_str_ncat(text, "d", sizeof text));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncat(text, "d", 3));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ(OV_EBUFFER, ov_str_ncat(text, "d", 0));
  EXPECT_EQ(0, ov_str_ncat(text, "", 0));
  EXPECT_STREQ("abc", text);
}

TEST(StringsCopyTest, NcatOfNullGives22) {
  char text[4] = "abc";
  EXPECT_EQ(OV_EINVAL, ov_str_ncat(nullptr, "d", 4));
  EXPECT_EQ(OV_EINVAL, ov_str_ncat(text, nullptr, 4));
  EXPECT_STREQ("abc", text);
}

TEST(StringsCopyTest, TrimmedCopyDropsWhiteSpaceAtBothEnds) {
  char text[16];
  size_t pos = 0;
  EXPECT_EQ(0, ov_trimmed_str_to(text, " \t\r\n\v\fa b\f\v\n\r\t ", sizeof text, &pos));
  EXPECT_STREQ("a b", text);
  EXPECT_EQ(3u, pos);
  EXPECT_EQ(0, ov_trimmed_str_to(text, "\xc2\xa0", sizeof text, nullptr));
  EXPECT_STREQ("\xc2\xa0", text);
  EXPECT_EQ(0, ov_trimmed_str_to(text, "  \t ", sizeof text, nullptr));
  EXPECT_STREQ("", text);
  EXPECT_EQ(0, ov_trimmed_str_to(text, "", sizeof text, nullptr));
  EXPECT_STREQ("", text);
}

TEST(StringsCopyTest, TrimmedCopyIsCutAsTheOthers) {
  char text[4];
  EXPECT_EQ(0, ov_trimmed_str_to(text, "  abc  ", sizeof text, nullptr));
  EXPECT_EQ(OV_EBUFFER, ov_trimmed_str_to(text, "  abcd  ", sizeof text, nullptr));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ(OV_EBUFFER, ov_trimmed_str_to(text, " ab\xc3\xa9 ", sizeof text, nullptr));
  EXPECT_STREQ("ab", text);
}

TEST(StringsCopyTest, TrimmedCopyFailureIsLogged) {
  ov::CapturedLog log;
  char text[4] = "abc";
  size_t pos = 4;
  EXPECT_EQ(OV_EINVAL, ov_trimmed_str_to(text, "x", sizeof text, &pos));
  EXPECT_STREQ("", text);
  EXPECT_EQ(OV_EINVAL, ov_trimmed_str_to(nullptr, "x", 4, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_trimmed_str_to(text, nullptr, 4, nullptr));
  const Lines lines = log.take();
  ASSERT_EQ(3u, lines.size());
  for (const std::string& line : lines) {
    EXPECT_TRUE(line.starts_with("LOG ov_trimmed_str_to failure, args ")) << line;
  }
}

TEST(StringsPrintfTest, FormatsAtThePosition) {
  char text[16];
  size_t pos = 0;
  EXPECT_EQ(0, ov_str_printf_to(text, sizeof text, &pos, "%d-", 12));
  EXPECT_EQ(0, ov_str_printf_to(text, sizeof text, &pos, "%s", "ab"));
  EXPECT_STREQ("12-ab", text);
  EXPECT_EQ(5u, pos);
  EXPECT_EQ(0, ov_str_printf_to(text, sizeof text, nullptr, "%s", ""));
  EXPECT_STREQ("", text);
}

TEST(StringsPrintfTest, TextThatFillsTheBufferExactlyGives0) {
  char text[5] = "####";
  size_t pos = 1;
  EXPECT_EQ(0, ov_str_printf_to(text, sizeof text, &pos, "%d", 123));
  EXPECT_STREQ("#123", text);
  EXPECT_EQ(4u, pos);
}

TEST(StringsPrintfTest, LongTextIsCutBetweenSequences) {
  char text[5];
  size_t pos = 0;
  EXPECT_EQ(OV_EBUFFER, ov_str_printf_to(text, sizeof text, &pos, "%s", "abcde"));
  EXPECT_STREQ("abcd", text);
  EXPECT_EQ(4u, pos);
  pos = 0;
  EXPECT_EQ(OV_EBUFFER, ov_str_printf_to(text, sizeof text, &pos, "%s", "abc\xc3\xa9"));
  EXPECT_STREQ("abc", text);
  EXPECT_EQ(3u, pos);
}

TEST(StringsPrintfTest, BadArgumentsGive22) {
  char text[4] = "abc";
  const auto without_format_check = &ov_str_printf_to;
  EXPECT_EQ(OV_EINVAL, ov_str_printf_to(nullptr, 4, nullptr, "%d", 1));
  EXPECT_EQ(OV_EINVAL, without_format_check(text, sizeof text, nullptr, nullptr));
  EXPECT_STREQ("", text);
  text[0] = 'a';
  size_t pos = 4;
  EXPECT_EQ(OV_EINVAL, ov_str_printf_to(text, sizeof text, &pos, "%d", 1));
  EXPECT_STREQ("", text);
  EXPECT_EQ(4u, pos);
}

ov_rc formatByList(char* text, size_t size, size_t* pos, const char* format, ...) OV_PRINTF(4, 5);

ov_rc formatByList(char* text, size_t size, size_t* pos, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const ov_rc result = ov_str_vprintf_to(text, size, pos, format, arguments);
  va_end(arguments);
  return result;
}

TEST(StringsPrintfTest, FormOfAnArgumentListIsTheSame) {
  char text[8];
  size_t pos = 0;
  EXPECT_EQ(0, formatByList(text, sizeof text, &pos, "%d-", 12));
  EXPECT_EQ(OV_EBUFFER, formatByList(text, sizeof text, &pos, "%s", "abcdef"));
  EXPECT_STREQ("12-abcd", text);
  EXPECT_EQ(7u, pos);
}

// A growing buffer of the test.
struct Growing {
  char* text = nullptr;
  size_t capacity = 0;
  size_t pos = 0;
  ~Growing() { std::free(text); }
};

ov_rc growByList(Growing* buffer, const char* format, ...) OV_PRINTF(2, 3);

ov_rc growByList(Growing* buffer, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const ov_rc result =
      ov_str_vprintf_to_resize(&buffer->text, &buffer->capacity, &buffer->pos, format, arguments);
  va_end(arguments);
  return result;
}

TEST(StringsResizeTest, FormOfAnArgumentListMayFormatTwice) {
  Growing buffer;
  EXPECT_EQ(0, growByList(&buffer, "%d", 7));
  EXPECT_EQ(1024u, buffer.capacity);
  // What does not fit at first is formatted once more from the same arguments.
  EXPECT_EQ(0, growByList(&buffer, "%02000d|%s", 5, "end"));
  EXPECT_EQ(2005u, buffer.pos);
  EXPECT_EQ(2048u, buffer.capacity);
  EXPECT_EQ("5|end", std::string(buffer.text).substr(2000));
}

TEST(StringsResizeTest, NullBufferIsAllocatedWith1024Bytes) {
  Growing buffer;
  EXPECT_EQ(0, ov_str_to_resize(&buffer.text, "abc", &buffer.capacity, &buffer.pos));
  EXPECT_STREQ("abc", buffer.text);
  EXPECT_EQ(1024u, buffer.capacity);
  EXPECT_EQ(3u, buffer.pos);
  EXPECT_EQ(0, ov_str_printf_to_resize(&buffer.text, &buffer.capacity, &buffer.pos, "%d", 45));
  EXPECT_STREQ("abc45", buffer.text);
}

TEST(StringsResizeTest, CapacityDoublesUntilTheTextFits) {
  Growing buffer;
  buffer.capacity = 10;
  const std::string nine(9, 'x');
  EXPECT_EQ(0, ov_str_to_resize(&buffer.text, nine.c_str(), &buffer.capacity, &buffer.pos));
  EXPECT_EQ(10u, buffer.capacity);
  EXPECT_EQ(0, ov_str_to_resize(&buffer.text, "y", &buffer.capacity, &buffer.pos));
  EXPECT_EQ(20u, buffer.capacity);
  EXPECT_EQ(0, ov_str_printf_to_resize(&buffer.text, &buffer.capacity, &buffer.pos, "%070d", 7));
  EXPECT_EQ(160u, buffer.capacity);
  EXPECT_EQ(nine + "y" + std::string(69, '0') + "7", buffer.text);
  EXPECT_EQ(80u, buffer.pos);
}

TEST(StringsResizeTest, SourceBoundIsHonoured) {
  Growing buffer;
  EXPECT_EQ(0, ov_str_nto_resize(&buffer.text, "abcdef", 2, &buffer.capacity, nullptr));
  EXPECT_STREQ("ab", buffer.text);
}

TEST(StringsResizeTest, PositionBehindTheBufferGives22AndClearsTheText) {
  ov::CapturedLog log;
  Growing buffer;
  ASSERT_EQ(0, ov_str_to_resize(&buffer.text, "abc", &buffer.capacity, &buffer.pos));
  buffer.pos = 1024;
  EXPECT_EQ(OV_EINVAL, ov_str_to_resize(&buffer.text, "x", &buffer.capacity, &buffer.pos));
  EXPECT_STREQ("", buffer.text);
  buffer.text[0] = 'a';
  EXPECT_EQ(OV_EINVAL,
            ov_str_printf_to_resize(&buffer.text, &buffer.capacity, &buffer.pos, "%d", 1));
  EXPECT_STREQ("", buffer.text);
  EXPECT_EQ(1024u, buffer.capacity);
}

TEST(StringsResizeTest, NullArgumentsGive22) {
  ov::CapturedLog log;
  Growing buffer;
  EXPECT_EQ(OV_EINVAL, ov_str_to_resize(nullptr, "x", &buffer.capacity, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_str_to_resize(&buffer.text, "x", nullptr, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_str_to_resize(&buffer.text, nullptr, &buffer.capacity, nullptr));
  EXPECT_EQ(OV_EINVAL, ov_str_printf_to_resize(nullptr, &buffer.capacity, nullptr, "%d", 1));
  EXPECT_EQ(OV_EINVAL, ov_str_printf_to_resize(&buffer.text, nullptr, nullptr, "%d", 1));
  const auto without_format_check = &ov_str_printf_to_resize;
  EXPECT_EQ(OV_EINVAL, without_format_check(&buffer.text, &buffer.capacity, nullptr, nullptr));
}

TEST(StringsResizeTest, ImpossibleCapacityGives8AndLeavesTheBuffer) {
  char text[] = "abc";
  char* buffer = text;
  size_t capacity = SIZE_MAX / 2 + 2;
  size_t pos = SIZE_MAX / 2;
  EXPECT_EQ(OV_ENOMEM, ov_str_to_resize(&buffer, "abcdef", &capacity, &pos));
  EXPECT_EQ(text, buffer);
  EXPECT_EQ(SIZE_MAX / 2 + 2, capacity);
  EXPECT_STREQ("abc", text);
}

TEST(StringsResizeTest, NullPositionMeansTheStart) {
  Growing buffer;
  EXPECT_EQ(0, ov_str_printf_to_resize(&buffer.text, &buffer.capacity, nullptr, "%s", "abc"));
  EXPECT_EQ(0, ov_str_printf_to_resize(&buffer.text, &buffer.capacity, nullptr, "%s", "d"));
  EXPECT_STREQ("d", buffer.text);
  EXPECT_EQ(0, ov_str_to_resize(&buffer.text, "e", &buffer.capacity, nullptr));
  EXPECT_STREQ("e", buffer.text);
}

TEST(StringsCopyTest, WarningShowsTheArguments) {
  ov::CapturedLog log;
  char text[4] = "abc";
  const char source[] = "src";
  size_t pos = 7;
  EXPECT_EQ(OV_EINVAL, ov_str_to(text, source, sizeof text, &pos));
  char expected[128];
  std::snprintf(expected, sizeof expected, "LOG Warning: ov_str_to failure, args %p %p 4 7 'src'",
                static_cast<const void*>(text), static_cast<const void*>(source));
  EXPECT_EQ(Lines{expected}, log.take());
}

}  // namespace
