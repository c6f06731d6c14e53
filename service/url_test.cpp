#include "service/url.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/log_recorder.h"

namespace Vantrel::Web {
namespace {

struct UrlCase {
  const char* name;
  const char* text;
  const char* scheme;
  const char* user;
  const char* password;
  const char* host;
  uint16_t port;
  const char* path;
  const char* query;
};

const UrlCase kCases[] = {
    {"host and port", "http://127.0.0.1:33001", "http", "", "", "127.0.0.1", 33001, "", ""},
    {"port and slash", "http://h:80/", "http", "", "", "h", 80, "", ""},
    {"host, slash", "http://h/", "http", "", "", "h", 0, "", ""},
    {"host, path", "http://h/a/b", "http", "", "", "h", 0, "a/b", ""},
    {"port, path", "http://h:8/a/b", "http", "", "", "h", 8, "a/b", ""},
    {"port, path, query", "http://h:8/a?b=c?d", "http", "", "", "h", 8, "a", "b=c?d"},
    {"empty path, query", "http://h/?q", "http", "", "", "h", 0, "", "q"},
    {"query mark without a slash is no delimiter", "http://h?q", "http", "", "", "h?q", 0, "", ""},
    {"host alone", "http://h", "http", "", "", "h", 0, "", ""},
    {"user", "http://u@h:8/p", "http", "u", "", "h", 8, "p", ""},
    {"user, no port", "http://u@h/p", "http", "u", "", "h", 0, "p", ""},
    {"user, host alone", "http://u@h", "http", "u", "", "u@h", 0, "", ""},
    {"user and password", "http://u:p@h:8/x", "http", "u", "p", "h", 8, "x", ""},
    {"user and empty password", "http://u:@h:8", "http", "u", "", "h", 8, "", ""},
    {"second at sign stays in the host", "http://u@v@h:8", "http", "u", "", "v@h", 8, "", ""},
    {"colon before a later at sign renames the user", "http://u@v:w@h:8", "http", "v", "", "w@h", 8,
     "", ""},
    {"slash before the at sign", "http://u:p/q@h", "http", "u", "", "u:p", 0, "q@h", ""},
    {"delimiter at once: slash", "file:///a/b", "file", "", "", "", 0, "", ""},
    {"delimiter at once: colon", "http://:80", "http", "", "", "", 0, "", ""},
    {"delimiter at once: at sign", "http://@h", "http", "", "", "", 0, "", ""},
    {"nothing behind the scheme", "http://", "http", "", "", "", 0, "", ""},
    {"empty scheme", "://h:1", "", "", "", "h", 1, "", ""},
    {"second scheme mark", "a://b://c", "a", "", "", "b", 0, "/c", ""},
    {"two-line file", "http://127.0.0.1:33001\nkey\n", "http", "", "", "127.0.0.1", 33001, "", ""},
    {"two-line file with CR LF", "http://h:33001\r\nkey\r\n", "http", "", "", "h", 33001, "", ""},
    {"slash in the key is harmless", "http://127.0.0.1:33001\nab/cd", "http", "", "", "127.0.0.1",
     33001, "cd", ""},
    {"two-line file without a port takes the whole text as host", "http://h\nkey", "http", "", "",
     "h\nkey", 0, "", ""},
    {"at sign in the key turns the host into the user", "http://127.0.0.1:33001\nab@cd", "http",
     "127.0.0.1", "33001\nab", "127.0.0.1:33001\nab@cd", 0, "", ""},
    {"colon in the key stays behind the digits", "http://h:5\nx:y", "http", "", "", "h", 5, "", ""},
    {"port without digits", "http://h:x", "http", "", "", "h", 0, "", ""},
    {"port with blanks before it", "http://h: 81", "http", "", "", "h", 81, "", ""},
    {"highest port", "http://h:65535", "http", "", "", "h", 65535, "", ""},
    {"port beyond 16 bits keeps its lower bits", "http://h:65537", "http", "", "", "h", 1, "", ""},
    {"port beyond 32 bits saturates first", "http://h:99999999999", "http", "", "", "h", 65535, "",
     ""},
    {"negative port keeps its lower bits", "http://h:-1", "http", "", "", "h", 65535, "", ""},
};

TEST(UrlTest, TakesApartEveryForm) {
  for (const UrlCase& expected : kCases) {
    SCOPED_TRACE(expected.name);
    const Url url(expected.text);
    EXPECT_EQ(url.url, expected.text);
    EXPECT_EQ(url.scheme, expected.scheme);
    EXPECT_EQ(url.user, expected.user);
    EXPECT_EQ(url.password, expected.password);
    EXPECT_EQ(url.host, expected.host);
    EXPECT_EQ(url.port(0), expected.port);
    EXPECT_EQ(url.path, expected.path);
    EXPECT_EQ(url.query, expected.query);
  }
}

TEST(UrlTest, StartsCleared) {
  const Url url;
  EXPECT_EQ(url.url, "");
  EXPECT_EQ(url.port(0), 0);
}

TEST(UrlTest, DefaultPortStandsInForAMissingOneOnly) {
  EXPECT_EQ(Url("http://h/").port(80), 80);
  EXPECT_EQ(Url("http://h:8/").port(80), 8);
  EXPECT_EQ(Url("http://h:8/").port(0), 8);
}

TEST(UrlTest, TextWithoutSchemeMarkIsReportedAndClears) {
  TestSupport::LogRecorder log;
  Url url("http://u:p@h:8/p?q");
  url.parse("127.0.0.1:%s%n33001");
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{"Invalid URL: 127.0.0.1:%s%n33001"});
  EXPECT_EQ(url.url + url.scheme + url.user + url.password + url.host + url.path + url.query, "");
  EXPECT_EQ(url.port(0), 0);
}

TEST(UrlTest, EmptyTextIsReportedAsInvalid) {
  TestSupport::LogRecorder log;
  const Url url("");
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{"Invalid URL: "});
}

TEST(UrlTest, ParsingAgainLeavesNothingOfTheFormerText) {
  Url url("http://u:p@h:8/p?q");
  url.parse("https://other");
  EXPECT_EQ(url.scheme, "https");
  EXPECT_EQ(url.user + url.password + url.path + url.query, "");
  EXPECT_EQ(url.host, "other");
  EXPECT_EQ(url.port(0), 0);
}

TEST(UrlTest, ParsesItsOwnText) {
  Url url("http://h:8/p");
  url.parse(url.url);
  EXPECT_EQ(url.host, "h");
  EXPECT_EQ(url.port(0), 8);
}

TEST(UrlTest, ClearMakesItUnknown) {
  Url url("http://u:p@h:8/p?q");
  url.clear();
  EXPECT_EQ(url.url + url.scheme + url.user + url.password + url.host + url.path + url.query, "");
  EXPECT_EQ(url.port(0), 0);
}

TEST(UrlTest, ManyColonsBeforeADistantAtSignAreParsedInLinearTime) {
  const Url url("http://a" + std::string(1000000, ':') + "@h:8");
  EXPECT_EQ(url.host, "h");
  EXPECT_EQ(url.port(0), 8);
}

}  // namespace
}  // namespace Vantrel::Web
