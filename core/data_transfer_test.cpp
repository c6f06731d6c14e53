#include "core/data_transfer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <utility>

#include "tests/support/log_recorder.h"
#include "tests/support/runtime/temp_folder.h"

namespace Vantrel::Web {
namespace {

using ov::TempFolder;
using TestSupport::LogRecorder;

const std::string kPng("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);

class DataTransferTest : public testing::Test {
 protected:
  // The library formats local times.
  DataTransferTest() {
#ifdef _WIN32
    _putenv("TZ=UTC");
    _tzset();
#else
    setenv("TZ", "UTC", 1);
    tzset();
#endif
  }

  std::string file(const std::string& name, const std::string& content, int64_t modified) {
    std::string path = folder_.path(name);
    TempFolder::write(path, content);
    setTime(path, modified);
    return path;
  }
  static void setTime(const std::string& path, int64_t modified) {
    const std::chrono::sys_seconds time{std::chrono::seconds(modified)};
    std::filesystem::last_write_time(TempFolder::native(path),
                                     std::chrono::file_clock::from_sys(time));
  }
  static ov_stat statOf(const std::string& path) {
    ov_stat info = {};
    EXPECT_EQ(ov_file_stat(path.c_str(), &info, OV_STAT_IDENTITY), 0);
    return info;
  }

  TempFolder folder_;
};

constexpr int64_t kTime = 316490635;
constexpr char kDate[] = R"("lastModifiedDate":"Sat Jan 12 02:03:55 1980",)";
// The platform writes days below ten with a zero, other libraries with a blank.
#ifdef _WIN32
constexpr char kFirstDay[] = "Thu Jan 01 00:00:00 1970";
#else
constexpr char kFirstDay[] = "Thu Jan  1 00:00:00 1970";
#endif

TEST_F(DataTransferTest, AnEmptyListHasNoEntries) {
  EXPECT_EQ(dataTransferJson({}), R"({"dataTransfer":{"files":[]}})");
}

TEST_F(DataTransferTest, AnEntryTellsDatePathSizeAndTypeInThisOrder) {
  const std::string text = file("ä note.txt", "hello", kTime);
  const std::string picture = file("renamed.txt", kPng, kTime);
  EXPECT_EQ(dataTransferJson({text, picture}),
            std::string(R"({"dataTransfer":{"files":[{)") + kDate + "\"name\":\"" + text +
                R"(","size":5,"type":"text/plain"},{)" + kDate + "\"name\":\"" + picture +
                R"(","size":16,"type":"image/x-png"}]}})");
}

TEST_F(DataTransferTest, ADirectoryHasSizeZeroAndATypeOfItsOwn) {
  const std::string path = folder_.path("sub");
  std::filesystem::create_directory(TempFolder::native(path));
  const std::string json = dataTransferJson({path});
  EXPECT_NE(json.find(R"(sub","size":0,"type":"text/directory"}]}})"), std::string::npos) << json;
}

TEST_F(DataTransferTest, AFileThatIsGoneKeepsItsEntry) {
  const LogRecorder log;
  const std::string path = folder_.path("gone");
  const std::string json = dataTransferJson({path});
  // The record of nothing has the time 0.
  EXPECT_EQ(json, std::string(R"({"dataTransfer":{"files":[{"lastModifiedDate":")") + kFirstDay +
                      "\",\"name\":\"" + path + R"(","size":0,"type":""}]}})");
  EXPECT_EQ(log.countContaining("ERR fopen failed for file " + path + ", error "), 1u);
}

TEST_F(DataTransferTest, ANameHasDoubledBackslashes) {
  EXPECT_NE(dataTransferJson({"C:\\a\\b.txt"}).find(R"("name":"C:\\a\\b.txt",)"),
            std::string::npos);
}

TEST_F(DataTransferTest, ATimeBefore1970IsLeftOut) {
  const std::string path = file("old.txt", "x", -86400);
  ASSERT_LT(statOf(path).modified, 0);
  EXPECT_EQ(dataTransferJson({path}), "{\"dataTransfer\":{\"files\":[{\"name\":\"" + path +
                                          R"(","size":1,"type":"text/plain"}]}})");
}

TEST_F(DataTransferTest, ATypeComesFromTheContentUpTo256Bytes) {
  for (const auto& [size, type] : {std::pair<size_t, const char*>{0, ""},
                                   {1, "text/plain"},
                                   {100, "text/plain"},
                                   {255, "text/plain"},
                                   {256, "text/plain"},
                                   {257, "text/plain"},
                                   {100000, "text/plain"}}) {
    const std::string path = file("sized.png", std::string(size, 'a'), kTime);
    EXPECT_EQ(mimeTypeOf(path, statOf(path)), type) << size;
  }
}

TEST_F(DataTransferTest, AFileThatChangedItsSizeSinceHasNoType) {
  const std::string path = file("shrunk", std::string(100, 'a'), kTime);
  ov_stat info = statOf(path);
  EXPECT_EQ(mimeTypeOf(path, info), "text/plain");
  info.size = 200;
  EXPECT_EQ(mimeTypeOf(path, info), "");
  info.size = 50;
  EXPECT_EQ(mimeTypeOf(path, info), "");
}

}  // namespace
}  // namespace Vantrel::Web
