#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Lines = std::vector<std::string>;

const int32_t kFirstAssertsActive = g_ov_asserts_active;
const int32_t kFirstAssertsSkipped = g_ov_asserts_skipped;

TEST(StringsTest, LengthIsBounded) {
  EXPECT_EQ(3u, ov_str_nlen("abc", 10));
  EXPECT_EQ(2u, ov_str_nlen("abc", 2));
  EXPECT_EQ(0u, ov_str_nlen("abc", 0));
  EXPECT_EQ(3u, ov_str_nlen("abc", SIZE_MAX));
  EXPECT_EQ(0u, ov_str_nlen(nullptr, 5));
}

TEST(StringsTest, CopyOnTheHeapIsBoundedAndTerminated) {
  const std::unique_ptr<char, void (*)(void*)> whole(ov_str_ndup("abc", 10), &std::free);
  EXPECT_STREQ("abc", whole.get());
  const std::unique_ptr<char, void (*)(void*)> part(ov_str_ndup("abc", 2), &std::free);
  EXPECT_STREQ("ab", part.get());
  const std::unique_ptr<char, void (*)(void*)> none(ov_str_ndup("abc", 0), &std::free);
  EXPECT_STREQ("", none.get());
}

TEST(StringsTest, NullTextIsCountedOnlyWithTheAssertionsOff) {
  EXPECT_EQ(1, kFirstAssertsActive);
  EXPECT_EQ(0, kFirstAssertsSkipped);
  ov::CapturedLog log;
  g_ov_asserts_skipped = 0;
  EXPECT_EQ(nullptr, ov_str_ndup(nullptr, 3));
  EXPECT_EQ(Lines{"LOG ov_str_ndup() called with null string"}, log.take());
  EXPECT_EQ(0, g_ov_asserts_skipped);
  g_ov_asserts_active = 0;
  EXPECT_EQ(nullptr, ov_str_ndup(nullptr, 3));
  EXPECT_EQ(1, g_ov_asserts_skipped);
  EXPECT_EQ(OV_EINVAL, ov_str_tokenize(nullptr, nullptr, nullptr));
  EXPECT_EQ(4, g_ov_asserts_skipped);
  g_ov_asserts_active = 1;
  EXPECT_EQ(OV_EINVAL, ov_str_tokenize(nullptr, nullptr, nullptr));
  EXPECT_EQ(4, g_ov_asserts_skipped);
}

TEST(StringsTest, SpanCountsLeadingBytesOfTheSet) {
  EXPECT_EQ(3u, ov_str_nspn("aabc", 10, "ab"));
  EXPECT_EQ(2u, ov_str_nspn("aabc", 2, "ab"));
  EXPECT_EQ(0u, ov_str_nspn("cab", 10, "ab"));
  EXPECT_EQ(4u, ov_str_nspn("abab", 10, "ab"));
  EXPECT_EQ(1u, ov_str_nspn("aab", 0, "ab"));
  EXPECT_EQ(0u, ov_str_nspn("cab", 0, "ab"));
  EXPECT_EQ(0u, ov_str_nspn("", 10, "ab"));
  EXPECT_EQ(0u, ov_str_nspn("a", 10, ""));
  EXPECT_EQ(0u, ov_str_nspn(nullptr, 10, "a"));
  EXPECT_EQ(0u, ov_str_nspn("a", 10, nullptr));
}

TEST(StringsTest, BytesAreCountedAndReplaced) {
  EXPECT_EQ(2u, ov_str_cntchr("banb", 'b'));
  EXPECT_EQ(0u, ov_str_cntchr("banb", 0));
  EXPECT_EQ(1u, ov_str_cntchr("\xe9x", 0xe9));
  EXPECT_EQ(0u, ov_str_cntchr(nullptr, 'b'));
  char text[] = "a/b/c";
  ov_str_repchr(text, '/', '\\');
  EXPECT_STREQ("a\\b\\c", text);
  ov_str_repchr(text, 'x', 'y');
  EXPECT_STREQ("a\\b\\c", text);
  char accent[] = "\xe9";
  ov_str_repchr(accent, 0xe9, 'e');
  EXPECT_STREQ("e", accent);
  char empty[] = "";
  ov_str_repchr(empty, 0, 'x');
  EXPECT_STREQ("", empty);
  ov_str_repchr(nullptr, 'a', 'b');
}

TEST(StringsTest, TailIsComparedAtTheEnd) {
  EXPECT_EQ(0, ov_str_tail_cmp("file.log", ".log"));
  EXPECT_EQ(0, ov_str_tail_cmp("x", ""));
  EXPECT_EQ(0, ov_str_tail_cmp("", ""));
  EXPECT_EQ(0, ov_str_tail_cmp("ab", "ab"));
  EXPECT_NE(0, ov_str_tail_cmp("file.LOG", ".log"));
  EXPECT_NE(0, ov_str_tail_cmp("log", ".log"));
  EXPECT_EQ(1, ov_str_tail_cmp(nullptr, "a"));
  EXPECT_EQ(1, ov_str_tail_cmp("a", nullptr));
}

// The tokens of a command line, or the code as a single text.
Lines tokens(const std::string& text) {
  char** argv = nullptr;
  int32_t argc = -1;
  const ov_rc result = ov_str_tokenize(text.c_str(), &argv, &argc);
  if (result != 0) {
    EXPECT_EQ(nullptr, argv);
    EXPECT_EQ(0, argc);
    return {"error " + std::to_string(result)};
  }
  Lines list(argv, argv + argc);
  ov_str_tokcleanup(argv);
  return list;
}

TEST(StringsTokenizeTest, SplitsAtBlanksAndQuotes) {
  EXPECT_EQ((Lines{"a", "b c", "d"}), tokens("a \"b c\" d"));
  EXPECT_EQ((Lines{"a", "b \"c", "d"}), tokens("  a  'b \"c'  d  "));
  EXPECT_EQ((Lines{"it's"}), tokens("it's"));
  EXPECT_EQ((Lines{"a\"b", "c\""}), tokens("a\"b c\""));
  EXPECT_EQ((Lines{"a", "b"}), tokens("\"a\"b"));
  EXPECT_EQ((Lines{"a", "b"}), tokens("'a''b'"));
  EXPECT_EQ((Lines{""}), tokens("''"));
  EXPECT_EQ((Lines{"a\tb\n"}), tokens("a\tb\n"));
  EXPECT_EQ((Lines{"a"}), tokens("a"));
}

TEST(StringsTokenizeTest, OpenQuoteGives28673) {
  EXPECT_EQ((Lines{"error 28673"}), tokens("'unclosed"));
  EXPECT_EQ((Lines{"error 28673"}), tokens("a b \"c'"));
  EXPECT_EQ((Lines{"error 28673"}), tokens("\""));
}

TEST(StringsTokenizeTest, NoTokensLeaveTheListNull) {
  for (const char* text : {"", " ", "    "}) {
    char* other = nullptr;
    char** argv = &other;
    int32_t argc = 5;
    EXPECT_EQ(0, ov_str_tokenize(text, &argv, &argc));
    EXPECT_EQ(nullptr, argv);
    EXPECT_EQ(0, argc);
  }
  ov_str_tokcleanup(nullptr);
}

TEST(StringsTokenizeTest, NineHundredNinetyNineTokensWorkAnd1000DoNot) {
  std::string text;
  for (int i = 0; i < 999; ++i) text += "t ";
  EXPECT_EQ(Lines(999, "t"), tokens(text));
  EXPECT_EQ((Lines{"error 28673"}), tokens(text + "t"));
  EXPECT_EQ((Lines{"error 28673"}), tokens(text + "t t"));
}

TEST(StringsTokenizeTest, EachNullArgumentGives22) {
  char** argv = nullptr;
  int32_t argc = 0;
  EXPECT_EQ(OV_EINVAL, ov_str_tokenize(nullptr, &argv, &argc));
  EXPECT_EQ(OV_EINVAL, ov_str_tokenize("a", nullptr, &argc));
  EXPECT_EQ(OV_EINVAL, ov_str_tokenize("a", &argv, nullptr));
}

TEST(StringsTokTest, CutsTokensInPlace) {
  char text[] = ",;a,,b;c;";
  char* context = nullptr;
  EXPECT_STREQ("a", ov_str_tok(text, ",;", &context));
  EXPECT_STREQ("b", ov_str_tok(nullptr, ",;", &context));
  EXPECT_STREQ("c", ov_str_tok(nullptr, ",;", &context));
  EXPECT_EQ(nullptr, ov_str_tok(nullptr, ",;", &context));
  EXPECT_EQ(nullptr, ov_str_tok(nullptr, ",;", &context));
}

TEST(StringsTokTest, DelimitersMayChangeBetweenCalls) {
  char text[] = "key=a,b";
  char* context = nullptr;
  EXPECT_STREQ("key", ov_str_tok(text, "=", &context));
  EXPECT_STREQ("a", ov_str_tok(nullptr, ",", &context));
  EXPECT_STREQ("b", ov_str_tok(nullptr, ",", &context));
  EXPECT_EQ(nullptr, ov_str_tok(nullptr, ",", &context));
}

TEST(StringsTokTest, MissingArgumentsGiveNoToken) {
  char text[] = "a";
  char* context = nullptr;
  EXPECT_EQ(nullptr, ov_str_tok(nullptr, ",", &context));
  EXPECT_EQ(nullptr, ov_str_tok(text, nullptr, &context));
  EXPECT_EQ(nullptr, ov_str_tok(text, ",", nullptr));
}

}  // namespace
