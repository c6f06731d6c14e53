// Names of files, and trees of directories: copied, walked, deleted, looked up.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

TEST(FileNamesTest, Basenames) {
  const char* result = nullptr;
  EXPECT_EQ(0, ov_file_basename("a/b", &result));
  EXPECT_STREQ("b", result);
  EXPECT_EQ(0, ov_file_basename("b", &result));
  EXPECT_STREQ("b", result);
  for (const char* path : {"", "a/", "/"}) {
    EXPECT_EQ(28674, ov_file_basename(path, &result)) << path;
    EXPECT_EQ(nullptr, result);
  }
  EXPECT_EQ(22, ov_file_basename(nullptr, &result));
  EXPECT_EQ(22, ov_file_basename("a", nullptr));
}

TEST(FileNamesTest, Dirnames) {
  constexpr const char* kCases[][2] = {
      {"", ""},        {"a", "."},           {"a/", "."},      {"a/b", "a"},   {"a//b", "a"},
      {"a/b/", "a"},   {"/", "/"},           {"/a", "/"},      {"/a/b", "/a"}, {"C:/", "C:/"},
      {"C:/a", "C:/"}, {"C:/a/b//", "C:/a"}, {"//h/s", "//h"}, {"//h", "//"},  {"//h/s/", "//h/s"},
      {"./a", "./"},   {"./a/b", "./a"},     {"./", "./"},     {"../a", ".."}, {"C:a", "."},
  };
  for (const auto& c : kCases) {
    char path[16];
    strcpy(path, c[0]);
    ov_file_dirname(path);
    EXPECT_STREQ(c[1], path) << c[0];
  }
  ov_file_dirname(nullptr);
}

TEST(FileNamesTest, PathCompare) {
  EXPECT_EQ(0, ov_file_path_compare("a/b", "a/b"));
  EXPECT_EQ(0, ov_file_path_compare("a/b", "a/b/c"));
  EXPECT_EQ(0, ov_file_path_compare("a/", "a/b"));
  EXPECT_EQ(28675, ov_file_path_compare("a/b", "a/bc"));
  EXPECT_EQ(28675, ov_file_path_compare("a/b/c", "a/b"));
  EXPECT_EQ(28675, ov_file_path_compare("A/b", "a/b"));
  EXPECT_EQ(28675, ov_file_path_compare("", "a"));
  EXPECT_EQ(22, ov_file_path_compare(nullptr, "a"));
  EXPECT_EQ(22, ov_file_path_compare("a", nullptr));
}

TEST(FileTreeTest, CopyKeepsEveryByte) {
  const TempFolder folder;
  const std::string from = folder.path("from");
  const std::string to = folder.path("to");
  for (const size_t size : {0U, 1U, 4095U, 4096U, 4097U, 20000U}) {
    std::string content(size, '\0');
    for (size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 7);
    TempFolder::write(from, content);
    TempFolder::write(to, "old and longer than nothing");
    EXPECT_EQ(0, ov_file_copy(from.c_str(), to.c_str(), 0));
    EXPECT_EQ(content, TempFolder::read(to));
  }
  EXPECT_EQ(2, ov_file_copy(folder.path("none").c_str(), to.c_str(), 0));
  EXPECT_NE(0, ov_file_copy(from.c_str(), folder.path("none/x").c_str(), 0));
}

// a/ with one file and b/, which has one file and an empty directory.
void makeTree(const TempFolder& folder) {
  ASSERT_EQ(0, ov_dir_create(folder.path("a/b/c").c_str(), 0, 1));
  TempFolder::write(folder.path("a/one"), "1");
  TempFolder::write(folder.path("a/b/two"), "2");
}

TEST(FileTreeTest, DeleteNeedsAnEmptyDirectoryUnlessRecursive) {
  const TempFolder folder;
  makeTree(folder);
  const std::string top = folder.path("a");
  EXPECT_EQ(145, ov_dir_delete(top.c_str(), 0));
  EXPECT_EQ(0, ov_dir_delete(folder.path("a/b/c").c_str(), 0));
  EXPECT_EQ(0, ov_dir_delete(top.c_str(), 1));
  EXPECT_NE(0, ov_file_exist(top.c_str(), 0));
  EXPECT_EQ(0, ov_file_exist(folder.path().c_str(), 0));
  EXPECT_NE(0, ov_dir_delete(top.c_str(), 1));
  EXPECT_EQ(22, ov_dir_delete(nullptr, 1));
  EXPECT_NE(0, ov_dir_delete("", 1));
}

TEST(FileTreeTest, WalkDeliversADirectoryBeforeItsContent) {
  const TempFolder folder;
  makeTree(folder);
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path("a").c_str()));
  std::map<std::string, int32_t> seen;
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  int depth = 1;
  ov_rc error = 0;
  while ((error = ov_dir_walk_iterate(walk, out, sizeof out, &type)) == 0) {
    if (type == OV_WALK_UP) {
      EXPECT_STREQ("..", out);
      --depth;
      continue;
    }
    if (type == OV_WALK_DIRECTORY) ++depth;
    EXPECT_TRUE(seen.emplace(out, type).second);
    if (strcmp(out, folder.path("a/b/two").c_str()) == 0) {
      EXPECT_EQ(1U, seen.count(folder.path("a/b")));
    }
  }
  EXPECT_EQ(28678, error);
  EXPECT_EQ(0, depth);
  EXPECT_EQ((std::map<std::string, int32_t>{{folder.path("a/b"), OV_WALK_DIRECTORY},
                                            {folder.path("a/b/c"), OV_WALK_DIRECTORY},
                                            {folder.path("a/b/two"), OV_WALK_FILE},
                                            {folder.path("a/one"), OV_WALK_FILE}}),
            seen);
  EXPECT_EQ(28678, ov_dir_walk_pop(walk));
  ov_dir_walk_release(&walk);
  EXPECT_EQ(nullptr, walk);
  ov_dir_walk_release(&walk);
}

TEST(FileTreeTest, WalkCanLeaveADirectory) {
  const TempFolder folder;
  makeTree(folder);
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path("a").c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  while (ov_dir_walk_iterate(walk, out, sizeof out, &type) == 0) {
    EXPECT_STRNE(folder.path("a/b/two").c_str(), out);
    if (type == OV_WALK_DIRECTORY) {
      EXPECT_EQ(0, ov_dir_walk_pop(walk));
    }
  }
  ov_dir_walk_release(&walk);
}

TEST(FileTreeTest, WalkOfAFileAndOfNothing) {
  const TempFolder folder;
  makeTree(folder);
  ov_dir_walk* walk = nullptr;
  const std::string file = folder.path("a/one");
  ASSERT_EQ(0, ov_dir_walk_init(&walk, file.c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  EXPECT_EQ(0, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  EXPECT_EQ(file, out);
  EXPECT_EQ(OV_WALK_FILE, type);
  EXPECT_EQ(28678, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  EXPECT_EQ(22, ov_dir_walk_iterate(nullptr, out, sizeof out, &type));
  ov_dir_walk_release(&walk);
  EXPECT_EQ(2, ov_dir_walk_init(&walk, folder.path("none").c_str()));
  EXPECT_EQ(nullptr, walk);
  EXPECT_EQ(22, ov_dir_walk_init(nullptr, "x"));
  EXPECT_EQ(22, ov_dir_walk_init(&walk, nullptr));
  EXPECT_EQ(22, ov_dir_walk_pop(nullptr));
  ov_dir_walk_release(nullptr);
}

TEST(FileTreeTest, WalkIntoASmallBufferIsAnError) {
  const TempFolder folder;
  makeTree(folder);
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path("a").c_str()));
  char out[4];
  int32_t type = 0;
  EXPECT_EQ(28677, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  ov_dir_walk_release(&walk);
}

TEST(FileTreeTest, IsDirectory) {
  const TempFolder folder;
  makeTree(folder);
  EXPECT_EQ(1, ov_path_is_dir(folder.path("a").c_str()));
  EXPECT_EQ(0, ov_path_is_dir(folder.path("a/one").c_str()));
  EXPECT_EQ(0, ov_path_is_dir(folder.path("none").c_str()));
}

TEST(FileTreeTest, ConfigurationIsLookedUpInSixPlaces) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("r/p/bin/etc").c_str(), 0, 1));
  ASSERT_EQ(0, ov_dir_create(folder.path("r/p/etc").c_str(), 0, 1));
  ASSERT_EQ(0, ov_dir_create(folder.path("r/etc").c_str(), 0, 1));
  const std::string program = folder.path("r/p/bin/program");
  char out[OV_PATH_SIZE];
  EXPECT_EQ(-1, ov_path_etc_file("orvane.conf", program.c_str(), out, sizeof out));
  EXPECT_LT(0, ov_path_etc_dir(program.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r/p/etc"), out);  // the directory above the parent stands in for the root
  EXPECT_LT(0, ov_path_lib_dir(program.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r/p/lib"), out);
  // From the last place to the first: each one found hides those behind it.
  for (const char* place : {"r/etc", "r", "r/p/etc", "r/p", "r/p/bin/etc", "r/p/bin"}) {
    const std::string file = folder.path(place) + "/orvane.conf";
    TempFolder::write(file, "");
    EXPECT_EQ(static_cast<int32_t>(file.size()),
              ov_path_etc_file("orvane.conf", program.c_str(), out, sizeof out));
    EXPECT_EQ(file, out);
    EXPECT_LT(0, ov_path_etc_dir(program.c_str(), out, sizeof out));
    EXPECT_EQ(folder.path(place), out);
  }
  EXPECT_LT(0, ov_path_lib_dir(program.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r/p/lib"), out);
  EXPECT_EQ(-1, ov_path_etc_file(nullptr, program.c_str(), out, sizeof out));
  EXPECT_EQ(-1, ov_path_etc_file("orvane.conf", program.c_str(), out, 8));
}

TEST(FileTreeTest, APlaceThatIsTooLongIsPassedOver) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("r/p/bin").c_str(), 0, 1));
  const std::string file = folder.path("r/p/orvane.conf");
  TempFolder::write(file, "");
  std::string out(file.size() + 1, '#');
  EXPECT_EQ(static_cast<int32_t>(file.size()),
            ov_path_etc_file("orvane.conf", folder.path("r/p/bin/program").c_str(), out.data(),
                             out.size()));
  EXPECT_EQ(file, out.c_str());
  EXPECT_EQ(-1, ov_path_etc_file("orvane.conf", folder.path("r/p/bin/program").c_str(), out.data(),
                                 out.size() - 1));
}

TEST(FileTreeTest, FileInAStringOfDirectories) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths("f", "no-such-a:no-such-b", out, sizeof out));
  EXPECT_STREQ("no-such-b/f", out);
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths("f", "", out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths("", "a", out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths(nullptr, "a", out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths("f", nullptr, out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths("f", "a", nullptr, 9));
  // "." and ".." are there in every directory.
  EXPECT_EQ(0, ov_path_find_file_in_string_of_paths(".", "no-such:.:..", out, sizeof out));
  EXPECT_STREQ("./.", out);
  EXPECT_EQ(-1, ov_path_find_file_in_string_of_paths(".", "no-such:.", out, 9));
  EXPECT_EQ(0, ov_path_find_file_in_string_of_paths(".", "no-such:.", out, 10));
}

TEST(FileTreeTest, PrefixOf520BytesIsTooLongToMake) {
  const TempFolder folder;
  std::string path = folder.path();
  while (path.size() < 400) path += "/" + std::string(50, 'd');
  EXPECT_EQ(0, ov_dir_create((path + "/x").c_str(), 0, 1));
  path += "/" + std::string(520 - path.size() - 1, 'e');
  ASSERT_EQ(520U, path.size());
  EXPECT_EQ(122, ov_dir_create((path + "/x").c_str(), 0, 1));
}

TEST(FileTreeTest, WalkRefusesMissingArguments) {
  const TempFolder folder;
  ov_dir_walk* walk = nullptr;
  ASSERT_EQ(0, ov_dir_walk_init(&walk, folder.path().c_str()));
  char out[OV_PATH_SIZE];
  int32_t type = 0;
  EXPECT_EQ(22, ov_dir_walk_iterate(walk, nullptr, sizeof out, &type));
  EXPECT_EQ(22, ov_dir_walk_iterate(walk, out, sizeof out, nullptr));
  EXPECT_EQ(0, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  EXPECT_EQ(OV_WALK_UP, type);
  EXPECT_EQ(28678, ov_dir_walk_iterate(walk, out, sizeof out, &type));
  ov_dir_walk_release(&walk);
  const std::string text(600, 'x');
  EXPECT_NE(0, ov_dir_walk_init(&walk, text.c_str()));
  EXPECT_EQ(nullptr, walk);
}

TEST(FileTreeTest, DirectoriesBelowARootHaveOneSlash) {
  char out[OV_PATH_SIZE];
  EXPECT_EQ(6, ov_path_etc_dir("C:/no-such-folder/program", out, sizeof out));
  EXPECT_STREQ("C:/etc", out);
  EXPECT_EQ(6, ov_path_lib_dir("C:/no-such-folder/program", out, sizeof out));
  EXPECT_STREQ("C:/lib", out);
}

TEST(FileTreeTest, FailureLeavesAnEmptyText) {
  const TempFolder folder;
  const std::string program = folder.path("r/p/bin/program");
  const size_t size = folder.path("r/p").size() + 4;  // one byte less than is needed
  char out[OV_PATH_SIZE] = "old";
  for (const auto call : {ov_path_etc_dir, ov_path_lib_dir}) {
    strcpy(out, "old");
    EXPECT_EQ(-1, call(program.c_str(), out, size));
    EXPECT_STREQ("", out);
    strcpy(out, "old");
    EXPECT_EQ(-1, call("", out, size));
    EXPECT_STREQ("", out);
  }
  strcpy(out, "old");
  EXPECT_EQ(-1, ov_path_etc_file("none", program.c_str(), out, sizeof out));
  EXPECT_STREQ("", out);
  strcpy(out, "old");
  EXPECT_EQ(-1, ov_path_root_dir("", out, sizeof out));
  EXPECT_STREQ("", out);
}

TEST(FileTreeTest, ConfigurationNeedsRoomBehindTheRoot) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("r/p/bin").c_str(), 0, 1));
  const std::string program = folder.path("r/p/bin/program");
  const size_t root = folder.path("r/p").size();
  char out[OV_PATH_SIZE];
  // "/bin/.." and its terminator stand behind the root before it is canonical.
  EXPECT_EQ(static_cast<int32_t>(root + 4), ov_path_lib_dir(program.c_str(), out, root + 8));
  EXPECT_EQ(-1, ov_path_lib_dir(program.c_str(), out, root + 7));
  EXPECT_EQ(static_cast<int32_t>(root + 4), ov_path_etc_dir(program.c_str(), out, root + 8));
  EXPECT_EQ(-1, ov_path_etc_dir(program.c_str(), out, root + 7));
  EXPECT_EQ(-1, ov_path_etc_dir("", out, sizeof out));
  EXPECT_EQ(-1, ov_path_lib_dir("", out, sizeof out));
  EXPECT_EQ(-1, ov_path_etc_file("f", program.c_str(), nullptr, sizeof out));
  EXPECT_EQ(-1, ov_path_root_dir(program.c_str(), nullptr, sizeof out));
  TempFolder::write(folder.path("r/p/bin/orvane.conf"), "");
  EXPECT_EQ(static_cast<int32_t>(root + 4), ov_path_lib_dir(program.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r/p/lib"), out);
  EXPECT_EQ(-1, ov_path_lib_dir(program.c_str(), out, root + 4));
  EXPECT_EQ(-1, ov_path_lib_dir(program.c_str(), out, 4));
  EXPECT_EQ(-1, ov_path_find_file_in_paths("f", nullptr, nullptr, 4));
}

}  // namespace
