// Who and where this process is, as a program asks for it.
#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "runtime/ov_process.h"
#include "runtime/ov_uri.h"

namespace {

std::string normalized(const std::string& name) {
  char text[600];
  memcpy(text, name.c_str(), name.size() + 1);
  EXPECT_EQ(0, ov_platform_normalize_user_name_ex(text, sizeof text, OV_NORMALIZE_LOCAL)) << name;
  return text;
}

TEST(PlatformTest, UserNames) {
  EXPECT_EQ("bob", normalized("Bob"));
  EXPECT_EQ("ACME\\bob", normalized("Bob@acme"));
  EXPECT_EQ("ACME\\bob", normalized("acme\\Bob"));
  EXPECT_EQ("ACME\\bob", normalized("acme/Bob"));
  EXPECT_EQ("bob", normalized(".\\Bob"));
  char host[520];
  ASSERT_EQ(0, ov_platform_hostname(host, sizeof host));
  EXPECT_EQ("bob", normalized(std::string(host) + "\\Bob"));
  char name[] = "Bob@acme";
  EXPECT_EQ(0, ov_platform_normalize_set_level(OV_NORMALIZE_LOCAL));
  EXPECT_EQ(0, ov_platform_normalize_user_name(name, sizeof name));
  EXPECT_STREQ("ACME\\bob", name);
  EXPECT_EQ(22, ov_platform_normalize_set_level(4));
  EXPECT_EQ(0, ov_platform_normalize_set_level(OV_NORMALIZE_CACHED));
}

TEST(PlatformTest, FiniWithoutInit) {
  EXPECT_EQ(0, ov_platform_init());
  EXPECT_EQ(0, ov_platform_fini());
  EXPECT_EQ(22, ov_platform_fini());
}

TEST(PlatformTest, RegistryNames) {
  EXPECT_STREQ("SOFTWARE\\Orvane\\ZEPT", OV_WINREG_ZEPT);
  EXPECT_STREQ("SOFTWARE\\Orvane\\Marrow Server", OV_WINREG_MRWSRV);
  EXPECT_STREQ("SOFTWARE\\Orvane\\Trellis-Link", OV_WINREG_TLINK);
  EXPECT_STREQ("InstallDir", OV_WINREG_DIR);
  EXPECT_STREQ("LogDir", OV_WINREG_LOG);
}

TEST(PlatformTest, Texts) {
  char text[520];
  EXPECT_EQ(0, ov_platform_build_ver(text));
  EXPECT_STREQ("UNSET", text);
  EXPECT_EQ(0, ov_platform_build_os(text));
  EXPECT_STREQ("Windows", text);
  EXPECT_EQ(0, ov_platform_os(text, sizeof text));
  EXPECT_EQ(0, strncmp("Microsoft Windows ", text, 18));
  EXPECT_EQ(0, ov_platform_uname(0, text, sizeof text));
  EXPECT_STREQ("", text);
  text[0] = 'x';
  EXPECT_EQ(0, ov_platform_gname(0, text, sizeof text));
  EXPECT_STREQ("", text);
  ov_locale locale;
  EXPECT_EQ(0, ov_platform_getlocale(&locale));
  EXPECT_STREQ("C", locale.language);
  EXPECT_EQ(0, ov_platform_thread_init());
}

TEST(PlatformTest, Users) {
  char owner[520];
  EXPECT_EQ(0, ov_platform_get_process_uname(owner, sizeof owner));
  ov_process_setenv("USER", owner);
  char user[520];
  EXPECT_EQ(0, ov_platform_usr(user, sizeof user));
  EXPECT_STREQ(owner, user);
  // No product is installed where the tests run.
  int32_t uid = 7;
  EXPECT_EQ(2, ov_platform_uid(&uid));
  EXPECT_EQ(-1, uid);
  EXPECT_EQ(2, ov_platform_root(user, sizeof user));
  EXPECT_EQ(2, ov_platform_winpath(user, sizeof user));
}

TEST(PlatformTest, DrivesAndTheirSpace) {
  ov_drive* drives = nullptr;
  ASSERT_EQ(0, ov_platform_drives(&drives));
  ASSERT_NE(nullptr, drives);
  ov_mount* mounts = nullptr;
  ASSERT_EQ(0, ov_platform_mnt(&mounts, drives->path));
  ASSERT_NE(nullptr, mounts);
  EXPECT_STREQ(drives->path, mounts->path);
  EXPECT_EQ(mounts->total - mounts->free, mounts->used);
  ov_platform_free_mnt(&mounts);
  ASSERT_EQ(0, ov_platform_mnt(&mounts, nullptr));
  EXPECT_STREQ(drives->path, mounts->path);
  ov_platform_free_mnt(&mounts);
  ov_platform_free_drives(&drives);
  EXPECT_EQ(nullptr, drives);
  EXPECT_EQ(nullptr, mounts);
}

TEST(PlatformTest, Uris) {
  EXPECT_EQ(1, ov_uri_valid_uri("http://x"));
  for (const char* text : {"C://x", "http:/x", "http://", "1a://x"}) {
    EXPECT_EQ(0, ov_uri_valid_uri(text)) << text;
  }
}

}  // namespace
