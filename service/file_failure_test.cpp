// The file reader over a base runtime whose calls a case lets fail; the linker sends its calls
// here.
#include "service/file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "tests/support/log_recorder.h"

namespace {

struct Calls {
  ov_rc initCode = 0;
  ov_rc statCode = 0;
  ov_rc readCode = 0;
  uint64_t size = 0;
  std::string content;
  uint32_t asked = 0;
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
  return *file == &opened;
}

ov_rc __wrap_ov_file_fstat(ov_file*, ov_stat* record) {
  record->size = calls.size;
  return calls.statCode;
}

ov_rc __wrap_ov_file_read(ov_file*, void* buffer, uint32_t length, uint32_t* read) {
  calls.asked = length;
  *read = static_cast<uint32_t>(calls.content.size());
  std::memcpy(buffer, calls.content.data(), calls.content.size());
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

TEST_F(FileFailureTest, UnknownSizeReadsEmptyAndCloses) {
  calls.statCode = 5;
  EXPECT_EQ(readAll(), "");
  EXPECT_EQ(calls.asked, 0U);
  EXPECT_EQ(calls.closes, 1);
}

TEST_F(FileFailureTest, FailedReadKeepsWhatCame) {
  calls.size = 10;
  calls.content = "abc";
  calls.readCode = 5;
  EXPECT_EQ(readAll(), "abc");
  EXPECT_EQ(calls.closes, 1);
}

TEST_F(FileFailureTest, FileThatShrankEndsWhereTheReadEnds) {
  calls.size = 100;
  calls.content = "abc";
  EXPECT_EQ(readAll(), "abc");
  EXPECT_EQ(calls.asked, 100U);
}

TEST_F(FileFailureTest, SizeBeyondAllMemoryIsAnExceptionAndCloses) {
  calls.size = ~uint64_t{0} >> 1;
  EXPECT_THROW(readAll(), std::exception);
  EXPECT_EQ(calls.closes, 1);
}

}  // namespace
}  // namespace Vantrel::Web
