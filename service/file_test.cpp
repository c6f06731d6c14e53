#include "service/file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/support/log_recorder.h"
#include "tests/support/service_files.h"

namespace Vantrel::Web {
namespace {

class FileTest : public testing::Test {
 protected:
  std::string readBack(const std::string& text) {
    files_.writeUrl(text);
    File file(files_.urlFile());
    file.open();
    return file.read();
  }

  const TestSupport::ServiceFiles files_;
  TestSupport::LogRecorder log_;
};

TEST_F(FileTest, ReadsTheWholeFileByteForByte) {
  const std::string text = "first\nsecond\r\n\x1a\xff last";
  EXPECT_EQ(readBack(text), text);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(FileTest, EmptyFileIsAnEmptyText) {
  EXPECT_EQ(readBack(""), "");
}

TEST_F(FileTest, TextEndsAtItsFirstNul) {
  EXPECT_EQ(readBack(std::string("ab\0cd\0", 6)), "ab");
  EXPECT_EQ(readBack(std::string("\0cd", 3)), "");
}

TEST_F(FileTest, FileThatFillsItsPiecesIsReadToItsEnd) {
  for (const size_t size : {4095U, 4096U, 4097U, 12288U, 12289U}) {
    EXPECT_EQ(readBack(std::string(size, 'x')), std::string(size, 'x')) << size;
  }
}

TEST_F(FileTest, LargeFileIsReadWhole) {
  const std::string text(5U << 20, 'x');
  EXPECT_EQ(readBack(text), text);
}

TEST_F(FileTest, MissingFileIsADebugLineAndAnEmptyText) {
  File file(files_.urlFile());
  file.open();
  EXPECT_EQ(file.read(), "");
  ASSERT_EQ(log_.lines().size(), 1U) << log_.text();
  const std::string prefix = "DBG File::open() failed: ";
  EXPECT_EQ(log_.lines()[0].rfind(prefix, 0), 0U);
  EXPECT_GT(log_.lines()[0].size(), prefix.size());
}

TEST_F(FileTest, FileThatWasNotOpenedReadsEmpty) {
  files_.writeUrl("text");
  File file(files_.urlFile());
  EXPECT_EQ(file.read(), "");
}

TEST_F(FileTest, ReadingClosesTheFile) {
  files_.writeUrl("text");
  File file(files_.urlFile());
  file.open();
  EXPECT_EQ(file.read(), "text");
  EXPECT_EQ(file.read(), "");
  file.close();
}

TEST_F(FileTest, DestructorClosesAnOpenFile) {
  files_.writeUrl("text");
  {
    File file(files_.urlFile());
    file.open();
  }
  // An open file could not be replaced.
  files_.removeUrl();
  files_.writeUrl("other");
  EXPECT_EQ(readBack("third"), "third");
}

}  // namespace
}  // namespace Vantrel::Web
