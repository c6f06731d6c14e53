#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_identity.h"
#include "tests/support/runtime/user_name_reference.h"

namespace {

using Messages = std::vector<std::string>;
using ov::fake_identity;

// A byte that must not change stands behind the name's room.
struct Result {
  ov_rc error;
  std::string name;
};
Result normalized(const std::string& name, int32_t level, size_t room) {
  std::vector<char> buffer(std::max(room, name.size() + 1) + 1, '#');
  buffer[name.copy(buffer.data(), name.size())] = '\0';
  const ov_rc error = ov_platform_normalize_user_name_ex(buffer.data(), room, level);
  EXPECT_EQ('#', buffer.back());
  return {error, buffer.data()};
}
Result normalized(const std::string& name, int32_t level) {
  return normalized(name, level, 1200);
}

class UserNameTest : public ::testing::Test {
 protected:
  UserNameTest() {
    fake_identity = {};
    ov_platform_init();
  }
  ~UserNameTest() override {
    ov_platform_fini();
    ov_platform_normalize_set_level(3);
  }
};

TEST_F(UserNameTest, NormalForms) {
  const struct {
    const char *name, *expected;
  } rows[] = {
      {"Bob", "bob"},
      {"Bob@acme", "ACME\\bob"},
      {"acme\\Bob", "ACME\\bob"},
      {"acme/Bob", "ACME\\bob"},
      {".\\Bob", "bob"},
      {"Bob@.", "bob"},
      {"./Bob", "bob"},
      {"Bb\\Bob", "bob"},  // this computer
      {"Bob@bb", "bob"},
      {"bbb\\Bob", "BBB\\bob"},
      {"", ""},
      {"@", ""},
      {"\\", ""},
      {"Bob@", "bob"},
      {"\\Bob", "bob"},
      {"@acme", "ACME\\"},
      {"acme\\", "ACME\\"},
      {"Bob@a@b", "A@B\\bob"},
      {"x\\Bob@acme", "ACME\\x\\bob"},
      {"x/y\\Z", "X/Y\\z"},
      {"acme\\x\\Y", "ACME\\x\\y"},
      {"\xC3\x84"
       "Z@\xC3\xA4z",
       "\xC3\xA4"
       "Z\\\xC3\x84z"},
      {"\xFFZ@z\xFF", "Z\xFF\\\xFFz"},
  };
  for (const auto& row : rows) {
    const Result result = normalized(row.name, 1);
    EXPECT_EQ(0, result.error) << row.name;
    EXPECT_EQ(row.expected, result.name) << row.name;
  }
  EXPECT_EQ(Messages{}, fake_identity.asked);
}

TEST_F(UserNameTest, LevelsChooseTheLookUp) {
  ov::CapturedLog log;
  fake_identity.domains["acme.example"] = "Acme";
  EXPECT_EQ("Bob@acme.example", normalized("Bob@acme.example", 0).name);
  EXPECT_EQ("ACME.EXAMPLE\\bob", normalized("Bob@acme.example", 1).name);
  EXPECT_EQ("ACME\\bob", normalized("Bob@acme.example", 2).name);
  EXPECT_EQ("ACME\\bob", normalized("Bob@acme.example", 2).name);
  EXPECT_EQ((Messages{"acme.example", "acme.example"}), fake_identity.asked);
  EXPECT_EQ("ACME\\bob", normalized("ACME.example/Bob", 3).name);
  EXPECT_EQ("ACME\\bob", normalized("Bob@acme.example", 3).name);
  EXPECT_EQ(3U, fake_identity.asked.size());
  EXPECT_EQ("ACME.EXAMPLE\\bob", normalized("Bob@acme.example", 4).name);
  EXPECT_EQ(3U, fake_identity.asked.size());
  EXPECT_EQ(Messages{}, log.take());
}

TEST_F(UserNameTest, LevelOfTheProcess) {
  const auto name = [] {
    char text[32] = "Bob@acme";
    EXPECT_EQ(0, ov_platform_normalize_user_name(text, sizeof text));
    return std::string(text);
  };
  fake_identity.domains["acme"] = "Short";
  EXPECT_EQ("SHORT\\bob", name());  // 3 at the start
  EXPECT_EQ("SHORT\\bob", name());
  EXPECT_EQ(1U, fake_identity.asked.size());
  EXPECT_EQ(0, ov_platform_normalize_set_level(2));
  EXPECT_EQ("SHORT\\bob", name());
  EXPECT_EQ(2U, fake_identity.asked.size());
  EXPECT_EQ(0, ov_platform_normalize_set_level(1));
  EXPECT_EQ("ACME\\bob", name());
  EXPECT_EQ(0, ov_platform_normalize_set_level(0));
  EXPECT_EQ("Bob@acme", name());
  EXPECT_EQ(22, ov_platform_normalize_set_level(4));
  EXPECT_EQ("Bob@acme", name());
  EXPECT_EQ(0, ov_platform_normalize_set_level(3));
  EXPECT_EQ("SHORT\\bob", name());
}

TEST_F(UserNameTest, UnknownDomainIsKept) {
  ov::CapturedLog log;
  EXPECT_EQ("NO%S\\bob", normalized("Bob@no%s", 2).name);
  EXPECT_EQ("NO%S\\bob", normalized("Bob@no%s", 3).name);
  EXPECT_EQ(Messages(2, "ERR Unable to locate domain no%s.  Leaving name as is."), log.take());
}

TEST_F(UserNameTest, ResultThatDoesNotFitLeavesTheName) {
  fake_identity.domains["a"] = "longer";
  EXPECT_EQ(28677, normalized("B@a", 2, 8).error);
  EXPECT_EQ("B@a", normalized("B@a", 2, 8).name);
  EXPECT_EQ(0, normalized("B@a", 2, 9).error);
  EXPECT_EQ("LONGER\\b", normalized("B@a", 2, 9).name);
}

TEST_F(UserNameTest, PartsHave511Bytes) {
  const std::string fits(511, 'X'), more(512, 'X'), lower(511, 'x');
  EXPECT_EQ(fits + "\\" + lower, normalized(fits + "/" + fits, 1).name);
  for (const std::string& name : {more, more + "@a", "B@" + more, "a\\" + more, more + "\\B"}) {
    EXPECT_EQ(28677, normalized(name, 1).error);
    EXPECT_EQ(name, normalized(name, 1).name);
  }
}

TEST_F(UserNameTest, BadArguments) {
  char text[] = "Bob";
  EXPECT_EQ(22, ov_platform_normalize_user_name_ex(nullptr, 4, 1));
  EXPECT_EQ(22, ov_platform_normalize_user_name_ex(text, 3, 1));  // no terminator
  EXPECT_EQ(22, ov_platform_normalize_user_name_ex(text, 0, 1));
  EXPECT_EQ(22, ov_platform_normalize_user_name(nullptr, 4));
  EXPECT_EQ(0, ov_platform_normalize_user_name_ex(nullptr, 0, 0));
  EXPECT_STREQ("Bob", text);
}

std::optional<std::string> fakeShortName(const std::string& domain) {
  const auto found = fake_identity.domains.find(ov::lower(domain));
  if (found == fake_identity.domains.end()) return std::nullopt;
  return found->second;
}
std::optional<std::string> noShortName(const std::string&) {
  return std::nullopt;
}

void expectAsReference(const std::string& name, int32_t level) {
  const auto expected = ov::reference::normalForm(name, fake_identity.computer,
                                                  level == 1 ? noShortName : fakeShortName);
  const Result result = normalized(name, level, 2048);
  ASSERT_EQ(expected.has_value() ? 0 : 28677, result.error) << name;
  ASSERT_EQ(expected.value_or(name), result.name) << name << " at level " << level;
}

TEST_F(UserNameTest, EqualsTheReferenceOnAllShortNames) {
  fake_identity.domains = {{"a", "b"}, {"bbb", "Long.name"}, {"a.", ""}};
  const std::string alphabet = "abB@\\/.";
  size_t names = 1;
  for (size_t length = 0; length <= 6; ++length, names *= alphabet.size()) {
    std::string name(length, '\0');
    for (size_t number = 0; number < names; ++number) {
      size_t rest = number;
      for (char& c : name) {
        c = alphabet[rest % alphabet.size()];
        rest /= alphabet.size();
      }
      expectAsReference(name, static_cast<int32_t>(1 + number % 3));
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(UserNameTest, EqualsTheReferenceOnRandomNames) {
  fake_identity.domains = {{"a", "b"}, {"bbb", "Long.name"}, {"a.", ""}};
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    std::string name(random() % (round % 10 == 0 ? 1100 : 24), '\0');
    const bool any = random() % 2 == 0;
    for (char& c : name)
      c = any ? static_cast<char>(1 + random() % 255) : "aBb.@\\/xZ"[random() % 9];
    expectAsReference(name, static_cast<int32_t>(1 + random() % 3));
    if (HasFatalFailure()) return;
  }
}

}  // namespace
