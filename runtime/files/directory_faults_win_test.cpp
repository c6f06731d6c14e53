// Directories, and the links in them, when the system refuses, races or shows what Wine does not.
#include <algorithm>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/failing_files_win.h"

namespace {

using ov::TempFolder;
using Messages = std::vector<std::string>;
using DirectoriesWinTest = ov::FailingFilesTest;

TEST_F(DirectoriesWinTest, EmptyRootOfAVolumeIsAnEmptyDirectory) {
  faults.findFirst = ERROR_FILE_NOT_FOUND;
  ov_dir dir;
  ov_dirent entry;
  ASSERT_EQ(0, ov_dir_open(folder_.path().c_str(), &dir));
  EXPECT_EQ(28678, ov_dir_next(&dir, &entry));
  EXPECT_EQ(0, ov_dir_close(&dir));
  EXPECT_EQ(2, ov_dir_open(path_.c_str(), &dir));
  faults.findFirst = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_dir_open(folder_.path().c_str(), &dir));
}

// Such a name is made by the long form of a path only, and a path of any other form means another.
TEST_F(DirectoriesWinTest, AWalkPassesOverNamesThatEndInDots) {
  std::wstring folder = TempFolder::native(folder_.path()).wstring();
  std::replace(folder.begin(), folder.end(), L'/', L'\\');
  ASSERT_NE(FALSE, CreateDirectoryW((L"\\\\?\\" + folder + L"\\...").c_str(), nullptr));
  ASSERT_NE(FALSE, CreateDirectoryW((L"\\\\?\\" + folder + L"\\sub.").c_str(), nullptr));
  TempFolder::write(folder_.path("end"), "");
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder_.path().c_str()));
  std::vector<std::string> found;
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  while (found.size() < 20 && ov_dir_walk_iterate(walk, out, sizeof out, &type) == 0) {
    found.emplace_back(out);
  }
  ov_dir_walk_release(&walk);
  std::sort(found.begin(), found.end());
  EXPECT_EQ((std::vector<std::string>{"..", folder_.path("end"), path_}), found);
  for (const wchar_t* const name : {L"\\...", L"\\sub."}) {
    EXPECT_NE(FALSE, RemoveDirectoryW((L"\\\\?\\" + folder + name).c_str()));
  }
}

TEST_F(DirectoriesWinTest, DirectoryReadFailures) {
  ov_dir dir;
  ov_dirent entry;
  ASSERT_EQ(0, ov_dir_open(folder_.path().c_str(), &dir));
  EXPECT_EQ(0, ov_dir_next(&dir, &entry));
  faults.findNext = ERROR_ACCESS_DENIED;
  EXPECT_EQ(5, ov_dir_next(&dir, &entry));
  EXPECT_EQ(Messages{}, log_.take());
  faults.findNext = ERROR_INVALID_PARAMETER;
  EXPECT_EQ(28678, ov_dir_next(&dir, &entry));
  EXPECT_EQ(Messages{"LOG WARNING: FindNextFile returned ERROR_INVALID_PARAMETER. Assuming "
                     "ERROR_NO_MORE_FILES."},
            log_.take());
  EXPECT_EQ(0, ov_dir_close(&dir));
}

TEST_F(DirectoriesWinTest, MountPointCountsAsADirectory) {
  faults.mountPoint = true;
  ov_stat record;
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(OV_TYPE_DIRECTORY, record.type);
  EXPECT_EQ(16895, record.mode);
  EXPECT_GT(0, record.created);
}

ov_rc note(const char*, int32_t created, void* argument) {
  static_cast<std::vector<int32_t>*>(argument)->push_back(created);
  return 0;
}

TEST_F(DirectoriesWinTest, DirectoryThatSomebodyElseMakesInBetweenIsThere) {
  std::vector<int32_t> told;
  faults.race = ov::FailingFiles::Faults::Race::kDirectory;
  const std::string made = folder_.path("made");
  EXPECT_EQ(0, ov_dir_create_callback(made.c_str(), 0, 0, note, &told));
  EXPECT_EQ((std::vector<int32_t>{0}), told);
  EXPECT_EQ(1, ov_path_is_dir(made.c_str()));
  faults.race = ov::FailingFiles::Faults::Race::kFile;
  EXPECT_EQ(267, ov_dir_create(folder_.path("blocked").c_str(), 0, 0));
}

TEST_F(DirectoriesWinTest, RecursiveDeleteRemovesALinkAndLeavesWhatItLeadsTo) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree/link").c_str(), 0, 1));
  TempFolder::write(folder_.path("tree/link/precious"), "kept");
  TempFolder::write(folder_.path("tree/file"), "goes");
  faults.link = L"tree\\link";
  faults.linkTarget = TempFolder::native(folder_.path("target")).wstring();
  EXPECT_EQ(0, ov_dir_delete(folder_.path("tree").c_str(), 1));
  EXPECT_EQ(1, faults.linksRemoved);
  faults.link.clear();
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree").c_str()));
  EXPECT_EQ("kept", TempFolder::read(folder_.path("target/precious")));
}

TEST_F(DirectoriesWinTest, DeleteOfALinkItselfRemovesOnlyTheLink) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("link").c_str(), 0, 0));
  TempFolder::write(folder_.path("link/precious"), "kept");
  faults.link = L"\\link";
  faults.linkTarget = TempFolder::native(folder_.path("target")).wstring();
  EXPECT_EQ(0, ov_dir_delete(folder_.path("link").c_str(), 1));
  faults.link.clear();
  EXPECT_EQ("kept", TempFolder::read(folder_.path("target/precious")));
}

TEST_F(DirectoriesWinTest, RecursiveDeleteGoesIntoWhatIsNoSurrogate) {
  constexpr DWORD kCloudTag = 0x9000001A;
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree/link").c_str(), 0, 1));
  TempFolder::write(folder_.path("tree/link/ours"), "goes");
  faults.link = L"tree\\link";
  faults.linkTag = kCloudTag;
  faults.linkTarget = TempFolder::native(folder_.path("target")).wstring();
  ov_dir_delete(folder_.path("tree").c_str(), 1);
  faults.link.clear();
  EXPECT_EQ(0, ov_path_exists(folder_.path("target/ours").c_str()));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree/link/ours").c_str()));
}

TEST_F(DirectoriesWinTest, RecursiveDeleteLeavesWhatASurrogateLeadsTo) {
  for (const DWORD tag : {IO_REPARSE_TAG_SYMLINK, IO_REPARSE_TAG_MOUNT_POINT}) {
    ASSERT_EQ(0, ov_dir_create(folder_.path("tree/link").c_str(), 0, 1));
    TempFolder::write(folder_.path("tree/link/precious"), "kept");
    faults.link = L"tree\\link";
    faults.linkTag = tag;
    faults.linkTarget = TempFolder::native(folder_.path(std::to_string(tag))).wstring();
    EXPECT_EQ(0, ov_dir_delete(folder_.path("tree").c_str(), 1));
    faults.link.clear();
    EXPECT_EQ("kept", TempFolder::read(folder_.path(std::to_string(tag) + "/precious")));
  }
}

TEST_F(DirectoriesWinTest, WalksGoOnBehindANameThatHasNoRoom) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree").c_str(), 0, 0));
  for (const char* name : {"a", "long", "z"}) TempFolder::write(folder_.path("tree/") + name, "");
  for (const std::wstring& name : {std::wstring(255, L'\u20AC'), std::wstring(L"ill\xD800")}) {
    faults.longName = name;
    std::vector<std::string> seen;
    ov_dir_walk* walk = nullptr;
    ASSERT_EQ(0, ov_dir_walk_init(&walk, folder_.path("tree").c_str()));
    char out[OV_PATH_SIZE];
    int32_t type = 0;
    ov_rc error = 0;
    while ((error = ov_dir_walk_iterate(walk, out, sizeof out, &type)) == 0) seen.push_back(out);
    ov_dir_walk_release(&walk);
    EXPECT_EQ(28678, error);
    EXPECT_EQ((std::vector<std::string>{folder_.path("tree/a"), folder_.path("tree/z"), ".."}),
              seen);
  }
}

TEST_F(DirectoriesWinTest, EntryWithoutRoomForItsNameTellsThatThereIsOne) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree").c_str(), 0, 0));
  TempFolder::write(folder_.path("tree/long"), "");
  faults.longName.assign(255, L'\u20AC');
  ov_dir dir;
  ov_dirent entry;
  ASSERT_EQ(0, ov_dir_open(folder_.path("tree").c_str(), &dir));
  EXPECT_EQ(0, ov_dir_next(&dir, &entry));
  EXPECT_EQ(0, ov_dir_next(&dir, &entry));
  EXPECT_EQ(122, ov_dir_next(&dir, &entry));
  EXPECT_EQ(&dir.data, entry.find);
  EXPECT_EQ(28678, ov_dir_next(&dir, &entry));
  EXPECT_EQ(nullptr, entry.find);
  EXPECT_EQ(0, ov_dir_close(&dir));
}

TEST_F(DirectoriesWinTest, RecursiveDeleteTakesWhatItHasRoomToName) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree").c_str(), 0, 0));
  for (const char* name : {"a", "long", "z"}) TempFolder::write(folder_.path("tree/") + name, "");
  faults.longName.assign(255, L'\u20AC');
  EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ov_dir_delete(folder_.path("tree").c_str(), 1));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree/a").c_str()));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree/z").c_str()));
}

TEST_F(DirectoriesWinTest, DirectoryMayEndInABackslash) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree/sub").c_str(), 0, 1));
  TempFolder::write(folder_.path("tree/sub/file"), "");
  const std::string top = folder_.path("tree") + "\\";
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, top.c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  EXPECT_EQ(0, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  EXPECT_EQ(top + "sub", out);
  char cut[8];
  EXPECT_EQ(0, ov_dir_walk_pop(walk));
  EXPECT_EQ(0, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  ov_dir_walk_release(&walk);
  ASSERT_EQ(0, ov_dir_walk_init(&walk, top.c_str()));
  EXPECT_EQ(28677, ov_dir_walk_iterate(walk, cut, sizeof cut, &type));
  ov_dir_walk_release(&walk);
  EXPECT_EQ(0, ov_dir_delete(top.c_str(), 1));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree").c_str()));
}

TEST_F(DirectoriesWinTest, EmptyPathDeletesNothing) {
  const ov_rc refused = ov_dir_delete("", 0);
  EXPECT_NE(0, refused);
  faults.findFirst = ERROR_ACCESS_DENIED;  // no directory is so much as opened
  EXPECT_EQ(refused, ov_dir_delete("", 1));
}

TEST_F(DirectoriesWinTest, PathTooLongForASearchIsRefused) {
  ov_dir dir;
  EXPECT_EQ(0, ov_dir_open(folder_.path().c_str(), &dir));
  EXPECT_EQ(0, ov_dir_close(&dir));
  // The mark of a long path adds four characters; 518 are the most.
  const std::string fits = "C:/" + std::string(511, 'x');
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, ov_dir_open(fits.c_str(), &dir));
  EXPECT_EQ(122, ov_dir_open((fits + "x").c_str(), &dir));
}

}  // namespace
