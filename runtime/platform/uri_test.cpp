#include "runtime/ov_uri.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/runtime/paths_reference.h"

namespace {

TEST(UriTest, Uris) {
  for (const char* text : {"http://x", "ab://c", "a+b.c-1://x", "http:///"}) {
    EXPECT_EQ(1, ov_uri_valid_uri(text)) << text;
  }
  for (const char* text : {"", "C://x", "http:/x", "http://", "1a://x", "a/b://c", "http:", "://x",
                           "ht tp://x", "http//x", "//x", "h:t://"}) {
    EXPECT_EQ(0, ov_uri_valid_uri(text)) << text;
  }
  EXPECT_EQ(0, ov_uri_valid_uri(nullptr));
}

TEST(UriTest, UriEqualsTheReferenceOnAllShortTexts) {
  const std::string alphabet = "aZ1:/.";
  for (size_t length = 0; length <= 7; ++length) {
    std::string text(length, alphabet[0]);
    size_t total = 1;
    for (size_t i = 0; i < length; ++i) total *= alphabet.size();
    for (size_t number = 0; number < total; ++number) {
      for (size_t i = 0, rest = number; i < length; ++i, rest /= alphabet.size()) {
        text[i] = alphabet[rest % alphabet.size()];
      }
      ASSERT_EQ(ov::reference::isUri(text), ov_uri_valid_uri(text.c_str()) == 1) << text;
    }
  }
}

TEST(UriTest, RandomTextsAgreeWithTheReference) {
  std::mt19937 random(47);
  constexpr const char* kPieces[] = {"http", "a", "+",   "1",    "-", ".",
                                     ":",    "/", "://", "host", " ", "\x80"};
  int good = 0;
  for (int i = 0; i < 100000; ++i) {
    std::string text;
    for (size_t count = random() % 8; count > 0; --count) text += kPieces[random() % 12];
    ASSERT_EQ(ov::reference::isUri(text), ov_uri_valid_uri(text.c_str()) == 1) << text;
    good += ov_uri_valid_uri(text.c_str());
    const bool scheme = ov::reference::isUri(text + "://x");
    // A scheme of one letter would be a drive.
    if (text.size() > 1 && text.find_first_of(":/") == std::string::npos) {
      ASSERT_EQ(scheme, ov_uri_valid_scheme_term(text.c_str()) == 1) << text;
    }
  }
  EXPECT_LT(100, good);
}

TEST(UriTest, SchemesByLength) {
  EXPECT_EQ(1, ov_uri_valid_scheme("http://", 4));
  EXPECT_EQ(0, ov_uri_valid_scheme("http://", 5));
  EXPECT_EQ(0, ov_uri_valid_scheme("http", 0));
  EXPECT_EQ(1, ov_uri_valid_scheme("h", 1));
  EXPECT_EQ(0, ov_uri_valid_scheme(nullptr, 1));
}

TEST(UriTest, TerminatedSchemes) {
  for (const char* text : {"a", "Z", "a0+.-", "http"}) {
    EXPECT_EQ(1, ov_uri_valid_scheme_term(text)) << text;
  }
  for (const char* text : {"", "0a", "+a", "a:", "a b", "a\x80"}) {
    EXPECT_EQ(0, ov_uri_valid_scheme_term(text)) << text;
  }
  EXPECT_EQ(0, ov_uri_valid_scheme_term(nullptr));
}

}  // namespace
