// The file reader over a base runtime whose calls a case lets fail; the linker sends its calls
// here.
#include "service/file.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"

namespace {

struct Calls {
  ov_rc initCode = 0;
  ov_rc readCode = 0;
  std::string content;
  bool memoryEnds = false;
  std::vector<uint32_t> asked;  // by each read
  int closes = 0;
};

Calls calls;
int opened;  // its address serves as the open file

}  // namespace

extern "C" {

ov_rc __wrap_ov_file_init(ov_file* file) {
  if (calls.initCode == 0) *file = reinterpret_cast<ov_file>(~uintptr_t{0});
  return calls.initCode;
}

ov_rc __wrap_ov_file_openread(const char*, ov_file* file) {
  *file = &opened;
  return 0;
}

int32_t __wrap_ov_file_valid(const ov_file* file) {
  return *file == &opened ? 1 : 0;
}

ov_rc __wrap_ov_file_read(ov_file*, void* buffer, uint32_t length, uint32_t* read) {
  if (calls.memoryEnds) throw std::bad_alloc();
  calls.asked.push_back(length);
  const size_t count = calls.content.copy(static_cast<char*>(buffer), length);
  calls.content.erase(0, count);
  *read = static_cast<uint32_t>(count);
  return calls.readCode;
}

ov_rc __wrap_ov_file_close(ov_file* file) {
  ++calls.closes;
  *file = reinterpret_cast<ov_file>(~uintptr_t{0});
  return 0;
}

}  // extern "C"

namespace Vantrel::Web {
namespace {

class FileFailureTest : public testing::Test {
 protected:
  FileFailureTest() { calls = Calls(); }

  std::string readAll() {
    File file("path");
    file.open();
    return file.read();
  }

  TestSupport::LogRecorder log_;
};

TEST_F(FileFailureTest, FailedInitialisationIsLoggedAndTheFileIsClosed) {
  calls.initCode = 28677;
  File file("path");
  ASSERT_EQ(log_.lines("LOG").size(), 1U) << log_.text();
  EXPECT_EQ(log_.lines("LOG")[0].rfind("File::File() error: ", 0), 0U);
  EXPECT_EQ(file.read(), "");
  EXPECT_EQ(calls.closes, 0);
}

TEST_F(FileFailureTest, SmallFileCostsOneRead) {
  calls.content = std::string(4095, 'x');
  EXPECT_EQ(readAll(), std::string(4095, 'x'));
  EXPECT_EQ(calls.asked, std::vector<uint32_t>{4096});
  EXPECT_EQ(calls.closes, 1);
}

TEST_F(FileFailureTest, PiecesGrowUpToAMegabyte) {
  const std::string content(4U << 20, 'x');
  calls.content = content;
  EXPECT_EQ(readAll(), content);
  EXPECT_EQ(calls.asked, (std::vector<uint32_t>{4096, 8192, 16384, 32768, 65536, 131072, 262144,
                                                524288, 1048576, 1048576, 1048576, 1048576}));
}

TEST_F(FileFailureTest, FailedReadKeepsWhatCame) {
  calls.content = "abc";
  calls.readCode = 5;
  EXPECT_EQ(readAll(), "abc");
  EXPECT_EQ(calls.closes, 1);
}

TEST_F(FileFailureTest, FailedReadOfAWholePieceIsTheLast) {
  calls.content = std::string(8192, 'x');
  calls.readCode = 5;
  EXPECT_EQ(readAll(), std::string(4096, 'x'));
}

TEST_F(FileFailureTest, EndOfMemoryIsAnExceptionAndCloses) {
  calls.memoryEnds = true;
  EXPECT_THROW(readAll(), std::bad_alloc);
  EXPECT_EQ(calls.closes, 1);
}

}  // namespace
}  // namespace Vantrel::Web
