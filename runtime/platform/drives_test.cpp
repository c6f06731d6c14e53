#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "tests/support/runtime/fake_identity.h"

namespace {

using ov::fake_identity;

class DrivesTest : public ::testing::Test {
 protected:
  DrivesTest() { fake_identity = {}; }
};

TEST_F(DrivesTest, DrivesInTheirOrder) {
  ov_drive* list = nullptr;
  ASSERT_EQ(0, ov_platform_drives(&list));
  std::vector<std::string> paths;
  for (const ov_drive* drive = list; drive != nullptr; drive = drive->next) {
    paths.push_back(drive->path);
  }
  EXPECT_EQ(4096U, fake_identity.roots_room);
  EXPECT_EQ((std::vector<std::string>{"C:/", "D:/", "Z:/"}), paths);
  ov_platform_free_drives(&list);
  EXPECT_EQ(nullptr, list);
  ov_platform_free_drives(&list);
  ov_platform_free_drives(nullptr);
}

TEST_F(DrivesTest, NoDrives) {
  fake_identity.roots = u"";
  ov_drive* list = nullptr;
  EXPECT_EQ(0, ov_platform_drives(&list));
  EXPECT_EQ(nullptr, list);
}

TEST_F(DrivesTest, FailureGivesNoList) {
  ov_drive old = {};
  ov_drive* list = &old;
  fake_identity.roots_error = 28677;
  EXPECT_EQ(28677, ov_platform_drives(&list));
  EXPECT_EQ(nullptr, list);
  fake_identity.roots_error = 0;
  fake_identity.roots = std::u16string(u"C:\\\0\xD800\0", 6);
  list = &old;
  EXPECT_EQ(22, ov_platform_drives(&list));
  EXPECT_EQ(nullptr, list);
  fake_identity.roots = u"C:\\" + std::u16string(517, u'x');
  EXPECT_EQ(122, ov_platform_drives(&list));
  EXPECT_EQ(22, ov_platform_drives(nullptr));
}

class MountsTest : public DrivesTest {};

TEST_F(MountsTest, AllDrives) {
  fake_identity.spaces = {{"C:/", {0, 100, 30}}, {"D:/", {21, 5, 5}}, {"Z:/", {0, UINT64_MAX, 1}}};
  ov_mount* list = nullptr;
  ASSERT_EQ(0, ov_platform_mnt(&list, nullptr));
  const ov_mount* mount = list;
  ASSERT_NE(nullptr, mount);
  EXPECT_STREQ("C:/", mount->path);
  EXPECT_STREQ("", mount->filesystem);
  EXPECT_STREQ("", mount->options);
  EXPECT_EQ(100U, mount->total);
  EXPECT_EQ(70U, mount->used);
  EXPECT_EQ(30U, mount->free);
  EXPECT_EQ(0U, mount->reserved);
  EXPECT_EQ(0, mount->error);
  mount = mount->next;
  ASSERT_NE(nullptr, mount);
  EXPECT_STREQ("D:/", mount->path);
  EXPECT_EQ(21, mount->error);
  EXPECT_EQ(0U, mount->total);
  EXPECT_EQ(0U, mount->used);
  EXPECT_EQ(0U, mount->free);
  mount = mount->next;
  ASSERT_NE(nullptr, mount);
  EXPECT_STREQ("Z:/", mount->path);
  EXPECT_EQ(UINT64_MAX - 1, mount->used);
  EXPECT_EQ(nullptr, mount->next);
  ov_platform_free_mnt(&list);
  EXPECT_EQ(nullptr, list);
  ov_platform_free_mnt(&list);
  ov_platform_free_mnt(nullptr);
}

TEST_F(MountsTest, OtherErrorEndsTheList) {
  fake_identity.spaces = {{"D:/", {5, 0, 0}}};
  ov_mount old = {};
  ov_mount* list = &old;
  EXPECT_EQ(5, ov_platform_mnt(&list, nullptr));
  EXPECT_EQ(nullptr, list);
  EXPECT_EQ((std::vector<std::string>{"C:/", "D:/"}), fake_identity.spaces_asked);
  fake_identity.roots_error = 8;
  EXPECT_EQ(8, ov_platform_mnt(&list, nullptr));
  EXPECT_EQ(22, ov_platform_mnt(nullptr, nullptr));
}

TEST_F(MountsTest, OnePath) {
  const struct {
    const char *path, *asked, *told;
  } rows[] = {
      {"C:/a", "C:/a", "C:/a"},
      {"C:\\a", "C:\\a", "C:\\a"},
      {"//host/share", "//host/share/", "//host/share/"},
      {"//host/share/", "//host/share/", "//host/share/"},
      {"\\\\host\\share", "//host/share/", "\\\\host\\share/"},
      {"\\\\host\\share\\", "//host/share/", "\\\\host\\share\\"},
      {"//host", "//host", "//host"},
      {"", "", ""},
  };
  for (const auto& row : rows) {
    fake_identity.spaces = {{row.asked, {0, 10, 4}}};
    fake_identity.spaces_asked.clear();
    ov_mount* list = nullptr;
    ASSERT_EQ(0, ov_platform_mnt(&list, row.path)) << row.path;
    EXPECT_EQ(std::vector<std::string>{row.asked}, fake_identity.spaces_asked);
    EXPECT_STREQ(row.told, list->path);
    EXPECT_EQ(6U, list->used);
    EXPECT_EQ(nullptr, list->next);
    ov_platform_free_mnt(&list);
  }
}

TEST_F(MountsTest, PathFailures) {
  ov_mount* list = nullptr;
  EXPECT_EQ(28677, ov_platform_mnt(&list, std::string(520, 'x').c_str()));
  const std::string share = "//host/" + std::string(512, 'x');
  EXPECT_EQ(28677, ov_platform_mnt(&list, share.c_str()));
  fake_identity.spaces = {{"X:/", {3, 0, 0}}, {"Y:/", {21, 9, 9}}, {"Q:/", {0, 3, 9}}};
  EXPECT_EQ(3, ov_platform_mnt(&list, "X:/"));
  EXPECT_EQ(nullptr, list);
  ASSERT_EQ(0, ov_platform_mnt(&list, "Y:/"));
  EXPECT_EQ(21, list->error);
  ov_platform_free_mnt(&list);
  ASSERT_EQ(0, ov_platform_mnt(&list, "Q:/"));  // a quota
  EXPECT_EQ(0U, list->used);
  ov_platform_free_mnt(&list);
}

}  // namespace
