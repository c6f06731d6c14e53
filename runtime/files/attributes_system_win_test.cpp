// Times, permissions, owners and links of files, by the system's own calls.
#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

constexpr int32_t kWriteBits = 0222;

class FileAttributesTest : public ::testing::Test {
 protected:
  FileAttributesTest() : path_(folder_.path("file")) { TempFolder::write(path_, "content"); }

  const TempFolder folder_;
  const std::string path_;
};

TEST_F(FileAttributesTest, TimesAreSetAndTold) {
  for (const std::string& target : {path_, folder_.path()}) {
    const int64_t accessed = 1773075731;
    const int64_t modified = 951868790;
    EXPECT_EQ(0, ov_file_utime(target.c_str(), &accessed, &modified));
    ov_stat record;
    ASSERT_EQ(0, ov_file_stat(target.c_str(), &record, 0));
    EXPECT_EQ(accessed, record.accessed);
    EXPECT_EQ(modified, record.modified);
  }
}

TEST_F(FileAttributesTest, TimeThatIsNotGivenStays) {
  const int64_t first = 1000000000;
  const int64_t second = 1100000000;
  ov_stat record;
  EXPECT_EQ(0, ov_file_utime3(path_.c_str(), &first, &first, &first));
  EXPECT_EQ(0, ov_file_utime(path_.c_str(), nullptr, &second));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(first, record.accessed);
  EXPECT_EQ(second, record.modified);
  EXPECT_EQ(0, ov_file_utime(path_.c_str(), &second, nullptr));
  EXPECT_EQ(0, ov_file_utime3(path_.c_str(), nullptr, &first, nullptr));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(second, record.accessed);
  EXPECT_EQ(first, record.modified);
}

TEST_F(FileAttributesTest, TimesThatAreNoneAndFilesThatAreNotThere) {
  const int64_t none = INT64_MAX;
  const int64_t good = 0;
  EXPECT_EQ(22, ov_file_utime(path_.c_str(), &none, &good));
  EXPECT_EQ(22, ov_file_utime(path_.c_str(), &good, &none));
  EXPECT_EQ(22, ov_file_utime3(path_.c_str(), &good, &good, &none));
  EXPECT_EQ(22, ov_file_utime(nullptr, &good, &good));
  EXPECT_EQ(2, ov_file_utime(folder_.path("none").c_str(), &good, &good));
}

TEST_F(FileAttributesTest, WithoutTheOwnersWriteBitAFileIsReadOnly) {
  ov_stat record;
  EXPECT_EQ(0, ov_file_permissions(path_.c_str(), 0444));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(0, record.mode & kWriteBits);
  EXPECT_EQ(5, ov_file_delete(path_.c_str()));
  EXPECT_EQ(0, ov_file_permissions(path_.c_str(), 0200));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(kWriteBits, record.mode & kWriteBits);
  EXPECT_EQ(0, ov_file_delete(path_.c_str()));
  EXPECT_EQ(2, ov_file_permissions(folder_.path("none").c_str(), 0));
  EXPECT_EQ(22, ov_file_permissions(nullptr, 0));
}

TEST_F(FileAttributesTest, OwnersStay) {
  ov_stat record;
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(0, ov_file_chown(path_.c_str(), record.uid, record.gid));
  EXPECT_EQ(0, ov_file_chown(path_.c_str(), -1, -1));
  EXPECT_EQ(50, ov_file_chown(path_.c_str(), record.uid + 1, -1));
  EXPECT_EQ(50, ov_file_chown(path_.c_str(), -1, record.gid + 1));
  EXPECT_EQ(2, ov_file_chown(folder_.path("none").c_str(), -1, -1));
  EXPECT_EQ(22, ov_file_chown(nullptr, -1, -1));
}

TEST_F(FileAttributesTest, FileThatIsNoLinkHasNoTarget) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(4390, ov_file_readlink(path_.c_str(), out, sizeof out));
  EXPECT_EQ(2, ov_file_readlink(folder_.path("none").c_str(), out, sizeof out));
  EXPECT_EQ(22, ov_file_readlink(nullptr, out, sizeof out));
  EXPECT_EQ(22, ov_file_readlink(path_.c_str(), nullptr, 0));
}

TEST_F(FileAttributesTest, LinkNeedsATextAndAPath) {
  EXPECT_EQ(22, ov_file_symlink(nullptr, path_.c_str()));
  EXPECT_EQ(22, ov_file_symlink("x", nullptr));
  EXPECT_EQ(22, ov_file_symlink("\xFF", folder_.path("link").c_str()));
}

}  // namespace
