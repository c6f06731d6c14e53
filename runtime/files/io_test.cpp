#include "runtime/ov_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "runtime/ov_paths.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

TEST(FilesTest, InitMarksClosed) {
  ov_file file = nullptr;
  EXPECT_EQ(1, ov_file_valid(&file));
  EXPECT_EQ(0, ov_file_init(&file));
  EXPECT_EQ(~uintptr_t{0}, reinterpret_cast<uintptr_t>(file));
  EXPECT_EQ(0, ov_file_valid(&file));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(22, ov_file_close(nullptr));
  EXPECT_EQ(22, ov_file_init(nullptr));
  EXPECT_EQ(0, ov_file_valid(nullptr));
}

TEST(FilesTest, AppendPath) {
  struct Case {
    const char *dir, *name, *result;
  };
  constexpr Case kCases[] = {{"", "x", "x"},   {"a/", "x", "a/x"}, {"a", "x", "a/x"},
                             {"/", "x", "/x"}, {"a", "", "a/"},    {"a/..", "/b", "a/..//b"},
                             {"", "", ""}};
  for (const Case& c : kCases) {
    char out[16];
    EXPECT_EQ(0, ov_file_append_path(c.dir, c.name, out, sizeof out));
    EXPECT_STREQ(c.result, out);
  }
}

TEST(FilesTest, AppendPathAtTheLimits) {
  char out[6];
  EXPECT_EQ(0, ov_file_append_path("ab", "cd", out, sizeof out));
  EXPECT_STREQ("ab/cd", out);
  EXPECT_EQ(28677, ov_file_append_path("ab", "cde", out, sizeof out));
  EXPECT_EQ(28677, ov_file_append_path("abcdef", "", out, sizeof out));
  EXPECT_EQ(28677, ov_file_append_path("abcde", "", out, sizeof out));
  EXPECT_EQ(0, ov_file_append_path("abcd", "", out, sizeof out));
  EXPECT_EQ(28677, ov_file_append_path("abc", "d\xC3\xA4", out, sizeof out));
  EXPECT_STREQ("abc/d", out);
  char kept[] = "keep";
  EXPECT_EQ(0, ov_file_append_path("a", "b", kept, 0));
  EXPECT_STREQ("keep", kept);
  EXPECT_EQ(22, ov_file_append_path(nullptr, "b", kept, sizeof kept));
  EXPECT_EQ(22, ov_file_append_path("a", nullptr, kept, sizeof kept));
  EXPECT_EQ(22, ov_file_append_path("a", "b", nullptr, 5));
}

TEST(FilesTest, AppendPathInPlace) {
  char out[6] = "a";
  EXPECT_EQ(0, ov_file_append_path(out, "b", out, sizeof out));
  EXPECT_STREQ("a/b", out);
  EXPECT_EQ(28677, ov_file_append_path(out, "cde", out, sizeof out));
}

TEST(FilesTest, ToUnixPath) {
  char path[] = R"(C:\a/b\)";
  ov_file_tounixpath(path);
  EXPECT_STREQ("C:/a/b/", path);
  ov_file_tounixpath(nullptr);
}

TEST(FilesTest, WriteThenRead) {
  const TempFolder folder;
  const std::string path = folder.path("data.bin");
  ov_file file;
  ASSERT_EQ(0, ov_file_openwrite(path.c_str(), &file, 0));
  uint32_t count = 99;
  EXPECT_EQ(0, ov_file_write(&file, "ab\0cd", 5, &count));
  EXPECT_EQ(5U, count);
  EXPECT_EQ(0, ov_file_flush(&file));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(0, ov_file_valid(&file));

  ASSERT_EQ(0, ov_file_openread(path.c_str(), &file));
  char buffer[8] = {};
  EXPECT_EQ(0, ov_file_read(&file, buffer, 3, &count));
  EXPECT_EQ(3U, count);
  EXPECT_EQ(0, ov_file_read(&file, buffer + 3, 5, &count));
  EXPECT_EQ(2U, count);
  EXPECT_EQ(std::string("ab\0cd", 5), std::string(buffer, 5));
  EXPECT_EQ(0, ov_file_read(&file, buffer, 5, &count));
  EXPECT_EQ(0U, count);
  EXPECT_EQ(0, ov_file_close(&file));
}

TEST(FilesTest, OpenWriteEmptiesAndOpenAppendKeeps) {
  const TempFolder folder;
  const std::string path = folder.path("log");
  TempFolder::write(path, "old content");
  ov_file file;
  uint32_t count = 0;
  ASSERT_EQ(0, ov_file_openwrite(path.c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_write(&file, "new", 3, &count));
  EXPECT_EQ(0, ov_file_close(&file));
  ASSERT_EQ(0, ov_file_openappend(path.c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_write(&file, "er", 2, &count));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ("newer", TempFolder::read(path));
  ASSERT_EQ(0, ov_file_openappend(folder.path("other").c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(0, ov_file_exist(folder.path("other").c_str(), 0));
}

TEST(FilesTest, OpenFailuresLeaveTheRecordClosed) {
  const TempFolder folder;
  ov_file file = nullptr;
  EXPECT_EQ(2, ov_file_openread(folder.path("none").c_str(), &file));
  EXPECT_EQ(0, ov_file_valid(&file));
  EXPECT_EQ(22, ov_file_openread(nullptr, &file));
  EXPECT_EQ(22, ov_file_openwrite("x", nullptr, 0));
}

TEST(FilesTest, NullArguments) {
  ov_file file;
  ov_file_init(&file);
  char buffer[4];
  uint32_t count = 0;
  ov_stat record;
  EXPECT_EQ(22, ov_file_read(nullptr, buffer, 1, &count));
  EXPECT_EQ(22, ov_file_read(&file, nullptr, 1, &count));
  EXPECT_EQ(22, ov_file_read(&file, buffer, 1, nullptr));
  EXPECT_EQ(22, ov_file_write(nullptr, buffer, 1, &count));
  EXPECT_EQ(22, ov_file_write(&file, nullptr, 1, &count));
  EXPECT_EQ(22, ov_file_write(&file, buffer, 1, nullptr));
  EXPECT_EQ(22, ov_file_flush(nullptr));
  EXPECT_EQ(22, ov_file_stat(nullptr, &record, 0));
  EXPECT_EQ(22, ov_file_stat("x", nullptr, 0));
  EXPECT_EQ(22, ov_file_fstat(nullptr, &record));
  EXPECT_EQ(22, ov_file_fstat(&file, nullptr));
  EXPECT_EQ(22, ov_file_delete(nullptr));
  EXPECT_EQ(22, ov_file_hardlink(nullptr, "x"));
  EXPECT_EQ(22, ov_file_hardlink("x", nullptr));
}

TEST(FilesTest, StatOfFileAndDirectory) {
  const TempFolder folder;
  const std::string path = folder.path("f.txt");
  TempFolder::write(path, "12345");
  ov_stat record;
  ASSERT_EQ(0, ov_file_stat(path.c_str(), &record, 0));
  EXPECT_EQ(5U, record.size);
  EXPECT_EQ(OV_TYPE_REGULAR, record.type);
  EXPECT_EQ(0x8000, record.mode & 0xF000);
  EXPECT_EQ(0, record.reserved);
  EXPECT_EQ(0U, record.id);
  EXPECT_EQ(0, record.links);
  EXPECT_NEAR(static_cast<double>(time(nullptr)), static_cast<double>(record.modified), 60);
  ASSERT_EQ(0, ov_file_stat(folder.path().c_str(), &record, 0));
  EXPECT_EQ(OV_TYPE_DIRECTORY, record.type);
  EXPECT_EQ(0x4000, record.mode & 0xF000);
  EXPECT_EQ(2, ov_file_stat(folder.path("none").c_str(), &record, 0));
  EXPECT_EQ(3, ov_file_stat(folder.path("f.txt/x").c_str(), &record, 0));
}

TEST(FilesTest, HardLinksShareIdentity) {
  const TempFolder folder;
  const std::string first = folder.path("first");
  const std::string second = folder.path("second");
  TempFolder::write(first, "x");
  EXPECT_EQ(0, ov_file_hardlink(first.c_str(), second.c_str()));
  EXPECT_EQ(183, ov_file_hardlink(first.c_str(), second.c_str()));
  EXPECT_EQ(2, ov_file_hardlink(folder.path("none").c_str(), folder.path("n").c_str()));
  ov_stat a, b, c;
  ASSERT_EQ(0, ov_file_stat(first.c_str(), &a, OV_STAT_IDENTITY));
  ASSERT_EQ(0, ov_file_stat(second.c_str(), &b, OV_STAT_IDENTITY | OV_STAT_NO_FOLLOW));
  EXPECT_NE(0U, a.id);
  EXPECT_EQ(a.id, b.id);
  EXPECT_EQ(2, a.links);
  ov_file file;
  ASSERT_EQ(0, ov_file_openread(second.c_str(), &file));
  EXPECT_EQ(0, ov_file_fstat(&file, &c));
  EXPECT_EQ(a.id, c.id);
  EXPECT_EQ(2, c.links);
  EXPECT_EQ(1U, c.size);
  EXPECT_EQ(OV_TYPE_REGULAR, c.type);
  EXPECT_EQ(a.modified, c.modified);
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(0, ov_file_delete(second.c_str()));
  ASSERT_EQ(0, ov_file_stat(first.c_str(), &a, OV_STAT_IDENTITY));
  EXPECT_EQ(1, a.links);
}

TEST(FilesTest, DeleteAndExist) {
  const TempFolder folder;
  const std::string path = folder.path("f");
  TempFolder::write(path, "");
  EXPECT_EQ(0, ov_file_exist(path.c_str(), 0));
  EXPECT_EQ(1, ov_path_exists(path.c_str()));
  EXPECT_EQ(0, ov_file_delete(path.c_str()));
  EXPECT_EQ(2, ov_file_delete(path.c_str()));
  EXPECT_EQ(2, ov_file_exist(path.c_str(), 0));
  EXPECT_EQ(0, ov_path_exists(path.c_str()));
}

TEST(FilesTest, NamesAreUtf8) {
  const TempFolder folder;
  const std::string path = folder.path("\xC3\xA4\xE2\x82\xAC \xF0\x9F\x98\x80.txt");
  ov_file file;
  ASSERT_EQ(0, ov_file_openwrite(path.c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ("", TempFolder::read(path));
  ov_dir dir;
  ov_dirent entry;
  std::set<std::string> names;
  ASSERT_EQ(0, ov_dir_open(folder.path().c_str(), &dir));
  while (ov_dir_next(&dir, &entry) == 0) names.insert(entry.name);
  EXPECT_EQ(0, ov_dir_close(&dir));
  EXPECT_EQ(1U, names.count("\xC3\xA4\xE2\x82\xAC \xF0\x9F\x98\x80.txt"));
}

TEST(FilesTest, DirectoryEntriesIncludeTheDots) {
  const TempFolder folder;
  TempFolder::write(folder.path("a"), "");
  ASSERT_EQ(0, ov_dir_create(folder.path("b").c_str(), 0, 0));
  ov_dir dir;
  ov_dirent entry;
  std::multiset<std::string> names;
  ASSERT_EQ(0, ov_dir_open((folder.path() + "/").c_str(), &dir));
  ov_rc error = 0;
  while ((error = ov_dir_next(&dir, &entry)) == 0) {
    names.insert(entry.name);
    EXPECT_EQ(&dir.data, entry.find);
  }
  EXPECT_EQ(28678, error);
  EXPECT_EQ(28678, ov_dir_next(&dir, &entry));
  EXPECT_EQ(0, ov_dir_close(&dir));
  EXPECT_EQ(0, ov_dir_close(&dir));
  EXPECT_EQ((std::multiset<std::string>{".", "..", "a", "b"}), names);
}

TEST(FilesTest, DirectoryOpenFailures) {
  const TempFolder folder;
  ov_dir dir;
  ov_dirent entry;
  EXPECT_EQ(22, ov_dir_open(nullptr, &dir));
  EXPECT_EQ(22, ov_dir_open("x", nullptr));
  EXPECT_EQ(22, ov_dir_next(nullptr, &entry));
  EXPECT_EQ(22, ov_dir_next(&dir, nullptr));
  EXPECT_EQ(22, ov_dir_close(nullptr));
  EXPECT_NE(0, ov_dir_open(folder.path("none").c_str(), &dir));
  EXPECT_EQ(0, ov_dir_close(&dir));
}

std::set<std::string> namesIn(const char* path) {
  std::set<std::string> names;
  ov_dir dir;
  ov_dirent entry;
  EXPECT_EQ(0, ov_dir_open(path, &dir)) << path;
  while (ov_dir_next(&dir, &entry) == 0) names.insert(entry.name);
  EXPECT_EQ(0, ov_dir_close(&dir));
  return names;
}

TEST(FilesTest, EmptyPathIsReadAsTheRootOfThePresentDrive) {
  const std::set<std::string> names = namesIn("");
  EXPECT_LT(2U, names.size());
  const char root[] = {static_cast<char>(std::filesystem::path::preferred_separator), '\0'};
  EXPECT_EQ(namesIn(root), names);
}

using Told = std::vector<std::pair<std::string, int32_t>>;

ov_rc note(const char* path, int32_t created, void* argument) {
  static_cast<Told*>(argument)->emplace_back(path, created);
  return 0;
}

TEST(FilesTest, CreateDirectoryTellsEachOneFromTheTop) {
  const TempFolder folder;
  const std::string top = folder.path("a");
  ASSERT_EQ(0, ov_dir_create(top.c_str(), 0, 0));
  Told told;
  const std::string path = folder.path("a/b/c");
  EXPECT_EQ(0, ov_dir_create_callback(path.c_str(), 0, 1, note, &told));
  ASSERT_LE(3U, told.size());
  const Told last(told.end() - 3, told.end());
  EXPECT_EQ((Told{{top, 0}, {folder.path("a/b"), 1}, {path, 1}}), last);
  for (const auto& [name, created] : told) {
    EXPECT_EQ(created == 1, name.size() > top.size()) << name;
  }
  told.clear();
  EXPECT_EQ(0, ov_dir_create_callback2(path.c_str(), 0, 1, note, &told));
  EXPECT_EQ((Told{{path, 0}}), told);
}

TEST(FilesTest, CreateDirectoryStopsWhenTheCallbackSaysSo) {
  const TempFolder folder;
  const auto refuse = [](const char*, int32_t created, void*) -> ov_rc { return created ? 77 : 0; };
  const std::string path = folder.path("a/b");
  EXPECT_EQ(77, ov_dir_create_callback(path.c_str(), 0, 1, refuse, nullptr));
  EXPECT_EQ(0, ov_file_exist(folder.path("a").c_str(), 0));
  EXPECT_NE(0, ov_file_exist(path.c_str(), 0));
}

TEST(FilesTest, CreateDirectoryOverAFile) {
  const TempFolder folder;
  TempFolder::write(folder.path("f"), "");
  EXPECT_EQ(267, ov_dir_create(folder.path("f").c_str(), 0, 0));
  EXPECT_EQ(267, ov_dir_create(folder.path("f").c_str(), 0, 1));
  EXPECT_EQ(267, ov_dir_create(folder.path("f/x").c_str(), 0, 1));
}

TEST(FilesTest, CreateDirectoryNeedsTheOneAbove) {
  const TempFolder folder;
  EXPECT_NE(0, ov_dir_create(folder.path("a/b").c_str(), 0, 0));
  EXPECT_EQ(0, ov_dir_create((folder.path("a/b") + "/").c_str(), 0, 1));
  EXPECT_EQ(0, ov_file_exist(folder.path("a/b").c_str(), 0));
  EXPECT_EQ(22, ov_dir_create(nullptr, 0, 0));
}

TEST(FilesTest, FindsTheProductRoot) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("r/bin/deep").c_str(), 0, 1));
  char out[OV_PATH_SIZE];
  const std::string deep = folder.path("r/bin/deep/program.exe");
  EXPECT_STREQ("product-info.mf", ov_path_product_info_file_name());
  const std::string bin = folder.path("r/bin");
  EXPECT_EQ(static_cast<int32_t>(bin.size()), ov_path_root_dir(deep.c_str(), out, sizeof out));
  EXPECT_EQ(bin, out);
  TempFolder::write(folder.path("r/product-info.mf"), "");
  EXPECT_LT(0, ov_path_root_dir(deep.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r"), out);
  TempFolder::write(folder.path("r/bin/product-info.mf"), "");
  EXPECT_LT(0, ov_path_root_dir(deep.c_str(), out, sizeof out));
  EXPECT_EQ(bin, out);
  TempFolder::write(folder.path("r/bin/deep/product-info.mf"), "");
  EXPECT_LT(0, ov_path_root_dir(deep.c_str(), out, sizeof out));
  EXPECT_EQ(folder.path("r/bin/deep"), out);
  EXPECT_EQ(-1, ov_path_root_dir(deep.c_str(), out, 4));
  EXPECT_EQ(-1, ov_path_root_dir("", out, sizeof out));
  EXPECT_EQ(-1, ov_path_root_dir(std::string(600, 'a').c_str(), out, sizeof out));
}

TEST(FilesTest, FindsAFileInTheFirstDirectoryThatHasIt) {
  const TempFolder folder;
  ASSERT_EQ(0, ov_dir_create(folder.path("one").c_str(), 0, 0));
  ASSERT_EQ(0, ov_dir_create(folder.path("two").c_str(), 0, 0));
  const std::string one = folder.path("one");
  const std::string two = folder.path("two");
  const char* const dirs[] = {one.c_str(), two.c_str(), nullptr};
  char out[OV_PATH_SIZE];
  EXPECT_EQ(-1, ov_path_find_file_in_paths("f", dirs, out, sizeof out));
  TempFolder::write(two + "/f", "");
  EXPECT_EQ(0, ov_path_find_file_in_paths("f", dirs, out, sizeof out));
  EXPECT_EQ(two + "/f", out);
  TempFolder::write(one + "/f", "");
  EXPECT_EQ(0, ov_path_find_file_in_paths("f", dirs, out, one.size() + 3));
  EXPECT_EQ(one + "/f", out);
  EXPECT_EQ(-1, ov_path_find_file_in_paths("f", dirs, out, one.size() + 2));
  EXPECT_EQ(-1, ov_path_find_file_in_paths("", dirs, out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_paths(nullptr, dirs, out, sizeof out));
  EXPECT_EQ(-1, ov_path_find_file_in_paths("f", nullptr, out, sizeof out));
  const char* const none[] = {nullptr};
  EXPECT_EQ(-1, ov_path_find_file_in_paths("f", none, out, sizeof out));
}

TEST(FilesTest, ExecutablePathAndDirectory) {
  char path[OV_PATH_SIZE];
  char dir[OV_PATH_SIZE];
  const int32_t length = ov_path_executable_path(path, sizeof path);
  ASSERT_LT(0, length);
  EXPECT_EQ(strlen(path), static_cast<size_t>(length));
  EXPECT_EQ(1, ov_path_exists(path));
  EXPECT_EQ(nullptr, strchr(path, '\\'));
  EXPECT_LT(0, ov_path_executable_dir(dir, sizeof dir));
  EXPECT_EQ(0, strncmp(path, dir, strlen(dir)));
  EXPECT_EQ('/', path[strlen(dir)]);
  EXPECT_EQ(-1, ov_path_executable_path(path, 3));
  EXPECT_EQ(-1, ov_path_executable_dir(path, 3));
  EXPECT_EQ(-1, ov_path_executable_path_from_arg());
}

TEST(FilesTest, AppendPathInPlaceNeedsATextThatFits) {
  char out[4] = "abc";
  EXPECT_EQ(28677, ov_file_append_path(out, "d", out, 3));
  EXPECT_STREQ("abc", out);
}

}  // namespace
