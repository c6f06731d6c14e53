#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

namespace {

std::string locale_text;
ov_rc locale_error = 0;

}  // namespace

// In place of the platform's.
ov_rc ov::locale_name(char* out, size_t size) {
  return locale_error != 0 ? locale_error : ov_str_ncpy(out, locale_text.c_str(), size);
}

namespace {

TEST(PlatformTextsTest, Build) {
  char version[7] = "######";
  EXPECT_EQ(0, ov_platform_build_ver(version));
  EXPECT_EQ(0, memcmp("UNSET\0", version, 6));
  char system[9] = "########";
  EXPECT_EQ(0, ov_platform_build_os(system));
  EXPECT_STREQ("Windows", system);
  EXPECT_EQ(22, ov_platform_build_ver(nullptr));
  EXPECT_EQ(22, ov_platform_build_os(nullptr));
}

TEST(PlatformTextsTest, NumbersHaveNoNames) {
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

TEST(PlatformTextsTest, System) {
  ov::SystemVersion version;
  ASSERT_EQ(0, ov::system_version(&version));
  const std::string expected = "Microsoft Windows " + std::to_string(version.major) + "." +
                               std::to_string(version.minor) + " " + version.service_pack;
  char out[520];
  EXPECT_EQ(0, ov_platform_os(out, sizeof out));
  EXPECT_EQ(expected, out);
  EXPECT_EQ(28677, ov_platform_os(out, 5));
  EXPECT_STREQ("Micr", out);
  EXPECT_EQ(22, ov_platform_os(nullptr, 5));
}

TEST(PlatformTextsTest, Locale) {
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
    locale_text = row.name;
    ov_locale locale;
    memset(&locale, '#', sizeof locale);
    EXPECT_EQ(0, ov_platform_getlocale(&locale));
    EXPECT_EQ(row.language, locale.language) << row.name;
    EXPECT_EQ(row.country, locale.country) << row.name;
    EXPECT_EQ(row.codeset, locale.codeset) << row.name;
  }
}

TEST(PlatformTextsTest, LocaleFailures) {
  ov_locale locale;
  EXPECT_EQ(22, ov_platform_getlocale(nullptr));
  locale_error = 28683;
  EXPECT_EQ(28683, ov_platform_getlocale(&locale));
  locale_error = 0;
}

}  // namespace
