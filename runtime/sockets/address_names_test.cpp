#include "runtime/sockets/address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/runtime/sockets_names_reference.h"

namespace {

using ov::kHostSize;

// "host|port", or "whole".
std::string split(const std::string& text) {
  char host[kHostSize] = "untouched";
  const char* const port = ov::split_port(text.c_str(), host);
  if (port != nullptr) return std::string(host) + "|" + port;
  EXPECT_STREQ("untouched", host);
  return "whole";
}

TEST(SocketNamesTest, HostAndPort) {
  struct Case {
    const char *text, *parts;
  };
  const Case cases[] = {
      {"[::1]:80", "::1|80"},
      {"[fe80::1%3]:http", "fe80::1%3|http"},
      {"host:80", "host|80"},
      {"127.0.0.1:0", "127.0.0.1|0"},
      {"host:", "host|"},
      {":80", "|80"},
      {"[]:80", "|80"},
      {"host", "whole"},
      {"", "whole"},
      {"::1", "whole"},
      {"a:b:c", "whole"},
      {"[::1]", "whole"},
      {"[::1]80", "whole"},
      {"]:[", "]|["},            // the bracket opens behind: only a colon is left
      {"x]:80", "x]|80"},        // none opens
      {"]:[::1]:80", "::1|80"},  // the pair is what counts
      {"]:[::1]80", "whole"},
      {"[a]:[b]:c", "a|[b]:c"},
      {"x[y]:z", "y|z"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.parts, split(c.text)) << c.text;
}

TEST(SocketNamesTest, HostOf255BytesIsNotTakenOut) {
  const std::string fits(254, 'h');
  EXPECT_EQ(fits + "|80", split(fits + ":80"));
  EXPECT_EQ(fits + "|80", split("[" + fits + "]:80"));
  EXPECT_EQ("whole", split(fits + "h:80"));
  EXPECT_EQ("whole", split("[" + fits + "h]:80"));
  EXPECT_EQ("whole", split("[" + std::string(100000, 'h') + "]:80"));
  const std::string port(1000, '1');
  EXPECT_EQ("h|" + port, split("h:" + port));
}

TEST(SocketNamesTest, AgreesWithTheReferenceOnAllShortTexts) {
  const std::string letters = "[]:1";
  size_t count = 1;
  for (size_t length = 0; length <= 8; ++length, count *= letters.size()) {
    for (size_t number = 0; number < count; ++number) {
      std::string text;
      for (size_t rest = number; text.size() < length; rest /= letters.size()) {
        text += letters[rest % letters.size()];
      }
      const auto parts = ov::split_port_reference(text);
      ASSERT_EQ(parts ? parts->first + "|" + parts->second : "whole", split(text)) << text;
    }
  }
}

TEST(SocketNamesTest, CodesOfALookUp) {
  for (const int32_t plain : {8, 10022, 10044, 10047, 10109, 11001, 11002, 11003}) {
    EXPECT_EQ(plain, ov::lookup_code(plain, 5));
    EXPECT_EQ(plain, ov::lookup_code(plain, 0));
  }
  for (const int32_t other : {-12, 1, 10014, 11000, 11004}) {
    EXPECT_EQ(5, ov::lookup_code(other, 5));
    EXPECT_EQ(28691, ov::lookup_code(other, 0));
  }
}

}  // namespace
