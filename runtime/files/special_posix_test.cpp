// Files and directories where only a POSIX system shows them: links, devices, names with
// backslashes.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

TEST(FilesPosixTest, RecursiveDeleteLeavesWhatALinkLeadsTo) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("target").c_str(), 0, 0));
  ASSERT_EQ(0, ov_dir_create(folder.path("tree").c_str(), 0, 0));
  TempFolder::write(folder.path("target/precious"), "kept");
  ASSERT_EQ(0, symlink(folder.path("target").c_str(), folder.path("tree/link").c_str()));
  EXPECT_EQ(0, ov_dir_delete(folder.path("tree").c_str(), 1));
  EXPECT_EQ(0, ov_path_exists(folder.path("tree").c_str()));
  EXPECT_EQ("kept", TempFolder::read(folder.path("target/precious")));
}

TEST(FilesPosixTest, DirectoryWithABackslashInItsNameIsNotDeleted) {
  ov::CapturedLog log;
  const TempFolder folder;
  ASSERT_EQ(0, mkdir(folder.path("tree").c_str(), 0777));
  ASSERT_EQ(0, mkdir(folder.path("tree/a\\b").c_str(), 0777));
  EXPECT_EQ(OV_EINVAL, ov_dir_delete(folder.path("tree").c_str(), 1));
  EXPECT_EQ(
      std::vector<std::string>{
          "ERR Does not support removing files or directories when path='\\'."},
      log.take());
  EXPECT_EQ(0, rmdir(folder.path("tree/a\\b").c_str()));
}

TEST(FilesPosixTest, LinkToADirectoryIsADirectoryThatIsThere) {
  const TempFolder folder;
  ASSERT_EQ(0, mkdir(folder.path("target").c_str(), 0777));
  ASSERT_EQ(0, symlink("target", folder.path("link").c_str()));
  EXPECT_EQ(0, ov_dir_create(folder.path("link").c_str(), 0, 0));
  TempFolder::write(folder.path("file"), "");
  ASSERT_EQ(0, symlink("file", folder.path("other").c_str()));
  EXPECT_EQ(267, ov_dir_create(folder.path("other").c_str(), 0, 0));
}

TEST(FilesPosixTest, WalkTellsWhatIsNeitherFileNorDirectory) {
  const TempFolder folder;
  ASSERT_EQ(0, mkfifo(folder.path("pipe").c_str(), 0666));
  ov_dir_walk* walk = nullptr;
  EXPECT_EQ(267, ov_dir_walk_init(&walk, folder.path("pipe").c_str()));
  EXPECT_EQ(nullptr, walk);
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path().c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  EXPECT_EQ(0, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  EXPECT_EQ(OV_WALK_OTHER, type);
  EXPECT_EQ(folder.path("pipe"), out);
  ov_dir_walk_release(&walk);
}

TEST(FilesPosixTest, WalkEndsAtAnEntryThatCannotBeLookedAt) {
  const TempFolder folder;
  ASSERT_EQ(0, symlink("nowhere", folder.path("dangling").c_str()));
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path().c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  EXPECT_EQ(2, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  ov_dir_walk_release(&walk);
}

TEST(FilesPosixTest, CopyOntoAFullDeviceFails) {
  const TempFolder folder;
  TempFolder::write(folder.path("from"), "content");
  EXPECT_NE(0, ov_file_copy(folder.path("from").c_str(), "/dev/full", 0));
  EXPECT_NE(0, ov_file_copy(folder.path().c_str(), folder.path("to").c_str(), 0));
}

TEST(FilesPosixTest, TextThatCannotBeFormattedGivesTheSystemsCode) {
  char text[16] = "abc";
  size_t pos = 1;
  // The C locale has no such character.
  EXPECT_NE(0, ov_str_printf_to(text, sizeof text, &pos, "%ls", L"\u20ac"));
  EXPECT_STREQ("a", text);
  EXPECT_EQ(1u, pos);
}

}  // namespace
