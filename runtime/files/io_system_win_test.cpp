// Files where only this platform shows them, by the system's own calls.
#include <gtest/gtest.h>

#include <string>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

class FilesSystemTest : public ::testing::Test {
 protected:
  FilesSystemTest() : path_(folder_.path("file")) { TempFolder::write(path_, "content"); }

  const TempFolder folder_;
  const std::string path_;
};

TEST_F(FilesSystemTest, OpenReadWriteCreatesUnlessTheModeIsSeven) {
  ov_file file;
  EXPECT_EQ(2, ov_file_openrw(folder_.path("new").c_str(), &file, 7));
  EXPECT_EQ(0, ov_file_openrw(folder_.path("new").c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(0, ov_file_openrw(path_.c_str(), &file, 7));
  char buffer[8] = {};
  uint32_t count = 0;
  EXPECT_EQ(0, ov_file_read(&file, buffer, 7, &count));
  EXPECT_STREQ("content", buffer);
  EXPECT_EQ(0, ov_file_close(&file));
}

TEST_F(FilesSystemTest, SeekWriteAndTruncate) {
  ov_file file;
  ASSERT_EQ(0, ov_file_openrw(path_.c_str(), &file, 0));
  uint32_t count = 0;
  EXPECT_EQ(0, ov_file_pwrite(&file, "XY", 2, 3, &count));
  EXPECT_EQ(2U, count);
  char next = 0;
  EXPECT_EQ(0, ov_file_read(&file, &next, 1, &count));
  EXPECT_EQ('n', next);  // the position stays behind what was written
  EXPECT_EQ(0, ov_file_seek(&file, -2, 2));
  EXPECT_EQ(0, ov_file_write(&file, "!", 1, &count));
  EXPECT_EQ(0, ov_file_seek(&file, -1, 1));
  EXPECT_EQ(0, ov_file_read(&file, &next, 1, &count));
  EXPECT_EQ('!', next);
  EXPECT_EQ(0, ov_file_truncate(&file, 4));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ("conX", TempFolder::read(path_));
}

TEST_F(FilesSystemTest, RenameReplaces) {
  TempFolder::write(folder_.path("other"), "other");
  EXPECT_EQ(0, ov_file_rename(path_.c_str(), folder_.path("other").c_str()));
  EXPECT_EQ("content", TempFolder::read(folder_.path("other")));
  EXPECT_EQ(2, ov_file_rename(path_.c_str(), folder_.path("x").c_str()));
  EXPECT_EQ(22, ov_file_rename(nullptr, "x"));
  EXPECT_EQ(22, ov_file_rename("x", nullptr));
}

TEST_F(FilesSystemTest, OpenReadKeepsWritersOut) {
  ov_file reader;
  ov_file other;
  ASSERT_EQ(0, ov_file_openread(path_.c_str(), &reader));
  EXPECT_EQ(32, ov_file_openwrite(path_.c_str(), &other, 0));
  EXPECT_EQ(0, ov_file_openread(path_.c_str(), &other));
  EXPECT_EQ(0, ov_file_close(&other));
  EXPECT_EQ(0, ov_file_close(&reader));
}

TEST_F(FilesSystemTest, LongPathsWork) {
  std::string deep = folder_.path();
  while (deep.size() < 440) deep += "/" + std::string(40, 'd');
  EXPECT_EQ(0, ov_dir_create(deep.c_str(), 0, 1));
  TempFolder::write(deep + "/f", "");
  EXPECT_EQ(0, ov_file_exist((deep + "/f").c_str(), 0));
  EXPECT_EQ(0, ov_dir_delete((folder_.path() + "/" + std::string(40, 'd')).c_str(), 1));
  EXPECT_EQ(28677, ov_file_exist(("C:/" + std::string(560, 'x')).c_str(), 0));
}

TEST_F(FilesSystemTest, RealPathHasForwardSlashesAndNoMark) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(0, ov_file_realpath(path_.c_str(), out, sizeof out));
  EXPECT_STREQ(path_.c_str(), out);
  EXPECT_EQ(122, ov_file_realpath(path_.c_str(), out, 4));
  EXPECT_EQ(2, ov_file_realpath("C:/none", out, sizeof out));
  EXPECT_EQ(22, ov_file_realpath(path_.c_str(), nullptr, 0));
}

}  // namespace
