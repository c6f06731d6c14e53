#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_identity.h"
#include "tests/support/runtime/fake_registry.h"

namespace {

using Messages = std::vector<std::string>;
using ov::fake_identity;
using ov::fake_registry;

TEST(SystemTest, Build) {
  char version[7] = "######";
  EXPECT_EQ(0, ov_platform_build_ver(version));
  EXPECT_EQ(0, memcmp("UNSET\0", version, 6));
  char system[9] = "########";
  EXPECT_EQ(0, ov_platform_build_os(system));
  EXPECT_STREQ("Windows", system);
  EXPECT_EQ(22, ov_platform_build_ver(nullptr));
  EXPECT_EQ(22, ov_platform_build_os(nullptr));
}

TEST(SystemTest, NumbersHaveNoNames) {
  char out[] = "old";
  EXPECT_EQ(0, ov_platform_uname(0, out, 0));
  EXPECT_STREQ("old", out);
  EXPECT_EQ(0, ov_platform_uname(1000, out, sizeof out));
  EXPECT_STREQ("", out);
  out[0] = 'o';
  EXPECT_EQ(0, ov_platform_gname(0, out, 1));
  EXPECT_STREQ("", out);
  EXPECT_EQ(0, ov_platform_gname(0, nullptr, 0));
  EXPECT_EQ(22, ov_platform_gname(0, nullptr, 1));
}

// Asked by way of memory, since a compiler takes two names for two functions.
TEST(SystemTest, NumbersOfUsersAndGroupsAreOneFunction) {
  using Namer = ov_rc (*)(int32_t, char*, size_t);
  const volatile Namer ofUser = ov_platform_uname;
  const volatile Namer ofGroup = ov_platform_gname;
  EXPECT_EQ(ofUser, ofGroup);
}

TEST(SystemTest, System) {
  fake_identity.version = {10, 2, "Pack \xC3\xA4"};
  char out[520];
  EXPECT_EQ(0, ov_platform_os(out, sizeof out));
  EXPECT_STREQ("Microsoft Windows 10.2 Pack \xC3\xA4", out);
  EXPECT_EQ(28677, ov_platform_os(out, 5));
  EXPECT_STREQ("Micr", out);
  EXPECT_EQ(22, ov_platform_os(nullptr, 5));
}

TEST(SystemTest, Locale) {
  const std::string longPart(200, 'x');
  const struct {
    std::string name, language, country, codeset;
  } rows[] = {
      {"C", "C", "", ""},
      {"", "", "", ""},
      {"en_US.UTF-8", "en", "US", "UTF-8"},
      {"English_United States.1252", "English", "United States", "1252"},
      {"de_DE@euro", "de", "DE@euro", ""},
      {"de_DE.UTF-8@euro", "de", "DE", "UTF-8"},
      {"en.UTF-8", "en.UTF-8", "", ""},
      {"_US.x", "", "", ""},
      {"a_.x", "a", "", ""},
      {longPart, longPart.substr(0, 128), "", ""},
      {"a_b." + longPart, "a", "b", longPart.substr(0, 128)},
      {"LC_COLLATE=C;LC_CTYPE=x.1252", "LC", "COLLATE=C;LC_CTYPE=x", "1252"},
  };
  for (const auto& row : rows) {
    fake_identity.locale = row.name;
    ov_locale locale;
    memset(&locale, '#', sizeof locale);
    EXPECT_EQ(0, ov_platform_getlocale(&locale));
    EXPECT_EQ(row.language, locale.language) << row.name;
    EXPECT_EQ(row.country, locale.country) << row.name;
    EXPECT_EQ(row.codeset, locale.codeset) << row.name;
  }
}

TEST(SystemTest, LocaleFailures) {
  ov_locale locale;
  EXPECT_EQ(22, ov_platform_getlocale(nullptr));
  fake_identity.locale_error = 28683;
  EXPECT_EQ(28683, ov_platform_getlocale(&locale));
  fake_identity.locale_error = 0;
}

// One case: the name is remembered for the process.
TEST(HostNameTest, IsRememberedAfterTheFirstSuccess) {
  char out[520] = "old";
  fake_identity.computer_error = 5;
  EXPECT_EQ(22, ov_platform_hostname(out, sizeof out));
  fake_identity = {};
  fake_identity.computer = "Machine";
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&wrong] {
      char name[520];
      const bool right =
          ov_platform_hostname(name, sizeof name) == 0 && std::string("Machine") == name;
      wrong += right ? 0 : 1;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong);
  fake_identity.computer_error = 5;
  EXPECT_EQ(0, ov_platform_hostname(out, sizeof out));
  EXPECT_STREQ("Machine", out);
  EXPECT_EQ(28677, ov_platform_hostname(out, 7));
  EXPECT_STREQ("Machin", out);
  EXPECT_EQ(0, ov_platform_hostname(out, 8));
  EXPECT_EQ(22, ov_platform_hostname(nullptr, 8));
  EXPECT_EQ(22, ov_platform_hostname(out, 0));
}

constexpr char kZept[] = "SOFTWARE\\Orvane\\ZEPT";
constexpr char kMarrow[] = "SOFTWARE\\Orvane\\Marrow Server";
constexpr char kTrellis[] = "SOFTWARE\\Orvane\\Trellis-Link";

std::string line(const std::string& key, const std::string& word) {
  return "LOG Key \"" + key + "\" " + word + "found in registry";
}

class RootTest : public ::testing::Test {
 protected:
  RootTest() { fake_registry = {}; }
  char out_[64] = "old";
  ov::CapturedLog log_;
};

TEST_F(RootTest, NamesInTheRegistry) {
  EXPECT_STREQ(kZept, OV_WINREG_ZEPT);
  EXPECT_STREQ(kMarrow, OV_WINREG_MRWSRV);
  EXPECT_STREQ(kTrellis, OV_WINREG_TLINK);
  EXPECT_STREQ("InstallDir", OV_WINREG_DIR);
  EXPECT_STREQ("LogDir", OV_WINREG_LOG);
}

TEST_F(RootTest, FirstProductThatIsThere) {
  fake_registry.directories[kTrellis] = "C:\\t";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\t", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "not "), line(kTrellis, "")}),
            log_.take());
  fake_registry.directories[kMarrow] = "C:\\m";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\m", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "")}), log_.take());
  fake_registry.directories[kZept] = "C:\\z";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\z", out_);
  EXPECT_EQ(Messages{line(kZept, "")}, log_.take());
}

TEST_F(RootTest, NoProduct) {
  EXPECT_EQ(2, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "not "), line(kTrellis, "not ")}),
            log_.take());
  EXPECT_EQ((Messages{kZept, kMarrow, kTrellis}), fake_registry.asked);
  EXPECT_EQ(22, ov_platform_root(nullptr, sizeof out_));
}

TEST_F(RootTest, PathWithForwardSlashes) {
  fake_registry.directories[kZept] = "C:\\p\\q r\\";
  EXPECT_EQ(0, ov_platform_winpath(out_, sizeof out_));
  EXPECT_STREQ("C:/p/q r/", out_);
  EXPECT_EQ(28677, ov_platform_winpath(out_, 4));
  fake_registry.directories = {{kMarrow, "C:\\m"}};
  EXPECT_EQ(2, ov_platform_winpath(out_, sizeof out_));
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_EQ(22, ov_platform_winpath(nullptr, sizeof out_));
}

}  // namespace
