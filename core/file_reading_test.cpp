#include "core/file_reading.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/approved_files.h"
#include "runtime/ov_files.h"
#include "runtime/ov_strings.h"
#include "tests/support/log_recorder.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

// What a test puts in place of a call of the runtime; the real one if it is empty.
std::function<ov_rc(uint32_t length, uint32_t* read)> readInstead;
ov_rc openResult = 0;
ov_rc seekResult = 0;
ov_rc encodeResult = 0;

}  // namespace

extern "C" {
ov_rc __real_ov_file_openread(const char* path, ov_file* file);
ov_rc __wrap_ov_file_openread(const char* path, ov_file* file) {
  return openResult != 0 ? openResult : __real_ov_file_openread(path, file);
}
ov_rc __real_ov_file_seek(ov_file* file, int64_t offset, int32_t whence);
ov_rc __wrap_ov_file_seek(ov_file* file, int64_t offset, int32_t whence) {
  return seekResult != 0 ? seekResult : __real_ov_file_seek(file, offset, whence);
}
ov_rc __real_ov_file_read(ov_file* file, void* buffer, uint32_t length, uint32_t* read);
ov_rc __wrap_ov_file_read(ov_file* file, void* buffer, uint32_t length, uint32_t* read) {
  return readInstead ? readInstead(length, read) : __real_ov_file_read(file, buffer, length, read);
}
ov_rc __real_ov_str_buf_to_base64(const void* src, size_t len, char* dst, size_t size);
ov_rc __wrap_ov_str_buf_to_base64(const void* src, size_t len, char* dst, size_t size) {
  return encodeResult != 0 ? encodeResult : __real_ov_str_buf_to_base64(src, len, dst, size);
}
}

namespace Vantrel::Web {
namespace {

using ov::TempFolder;
using TestSupport::LogRecorder;

constexpr char kNotApproved[] =
    R"({"error":{"code":-1,"internal_message":"Invalid request","user_message":"Unable to read file )"
    "context. Only files selected via standard file dialog or drag and drop accepted: ";
constexpr char kInvalidType[] =
    R"({"error":{"code":-1,"internal_message":"Invalid request","user_message":"Invalid file type: )";
constexpr char kReplyEnd[] = "\"}}";
constexpr char kRange[] =
    "Offset and chunk size cannot be negative, and the sum can't be greater than the file size";
constexpr char kSizeLine[] = " file exceeded max file size - max file size is 50MB  ";
constexpr int32_t kFailure = 5;

class FileReadingTest : public testing::Test {
 protected:
  ~FileReadingTest() override {
    readInstead = nullptr;
    openResult = seekResult = encodeResult = 0;
  }

  std::string approved(const std::string& name, const std::string& content) {
    std::string path = folder_.path(name);
    TempFolder::write(path, content);
    addToApprovedFileList({path});
    return path;
  }
  // A file of this size that takes no room on the disk where the file system can do so.
  std::string approvedSparse(const std::string& name, uint64_t size) {
    std::string path = approved(name, "");
    std::filesystem::resize_file(TempFolder::native(path), size);
    return path;
  }
  // Both forms refuse with the same line and text.
  void expectRefused(const std::string& path, const std::string& text, const std::string& line) {
    LogRecorder log;
    EXPECT_EQ(readAsArrayBuffer(path), text);
    EXPECT_EQ(log.count("ERR " + line), 1u) << log.text();
    log.clear();
    EXPECT_EQ(readChunkAsArrayBuffer(path, 0, 1), text);
    EXPECT_EQ(log.count("ERR " + line), 1u) << log.text();
  }

  TempFolder folder_;
};

TEST_F(FileReadingTest, AWholeFileIsADataUrl) {
  EXPECT_EQ(readAsArrayBuffer(approved("a.txt", "Hello")), "data:text/plain;base64,SGVsbG8=");
}

TEST_F(FileReadingTest, AnEmptyFileHasNoTypeAndNoBytes) {
  EXPECT_EQ(readAsArrayBuffer(approved("empty", "")), "data:;base64,");
}

TEST_F(FileReadingTest, NamesBeyondAsciiAndOtherSlashesReadTheSameFile) {
  const std::string path = approved("größe 漢字.txt", "Hello");
  EXPECT_EQ(readAsArrayBuffer(path), "data:text/plain;base64,SGVsbG8=");
#ifdef _WIN32
  std::string other = path;
  for (char& byte : other) byte = byte == '/' ? '\\' : byte;
  EXPECT_EQ(readAsArrayBuffer(other), "data:text/plain;base64,SGVsbG8=");
#endif
}

TEST_F(FileReadingTest, EveryByteArrivesAcrossThePiecesOfALongRead) {
  constexpr size_t kSize = (3 << 18) * 2 + 5;
  std::string content(kSize, '\0');
  uint32_t state = 1;
  for (char& byte : content) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<char>(state >> 24);
  }
  std::string encoded((kSize + 2) / 3 * 4 + 1, '\0');
  ASSERT_EQ(ov_str_buf_to_base64(content.data(), kSize, encoded.data(), encoded.size()), 0);
  encoded.pop_back();
  const std::string path = approved("long", content);
  EXPECT_TRUE(readAsArrayBuffer(path) == "data:application/octet-stream;base64," + encoded);
  EXPECT_TRUE(readChunkAsArrayBuffer(path, 0, kSize) ==
              "data:application/octet-stream;base64," + encoded);
}

TEST_F(FileReadingTest, FiftyMebibytesAreReadAndOneByteMoreIsNot) {
  const std::string path = approvedSparse("large", kMaxWholeFile);
  const std::string prefix = "data:application/octet-stream;base64,";
  const std::string result = readAsArrayBuffer(path);
  EXPECT_EQ(result.size(), prefix.size() + (kMaxWholeFile + 2) / 3 * 4);
  EXPECT_EQ(result.substr(0, prefix.size() + 4), prefix + "AAAA");
  std::filesystem::resize_file(TempFolder::native(path), kMaxWholeFile + 1);
  const LogRecorder log;
  EXPECT_EQ(readAsArrayBuffer(path), "Exceeded maximum allowed file size: " + path);
  EXPECT_TRUE(log.has("ERR " + path + kSizeLine)) << log.text();
  EXPECT_EQ(readChunkAsArrayBuffer(path, kMaxWholeFile, 1), prefix + "AA==");
}

TEST_F(FileReadingTest, AFileThatNobodyChoseIsRefused) {
  const std::string path = folder_.path("secret");
  TempFolder::write(path, "x");
  expectRefused(path, kNotApproved + path + kReplyEnd,
                path + " is not part of authorized list:\n  ");
}

TEST_F(FileReadingTest, WhatIsNoRegularFileIsRefused) {
  addToApprovedFileList({folder_.path()});
  expectRefused(folder_.path(), kInvalidType + folder_.path() + kReplyEnd,
                folder_.path() + " is an invalid file:\n  ");
  const std::string gone = folder_.path("gone");
  addToApprovedFileList({gone});
  expectRefused(gone, kInvalidType + gone + kReplyEnd, gone + " is an invalid file:\n  ");
}

TEST_F(FileReadingTest, AChunkIsTheSpanWithTheTypeOfTheWholeFile) {
  const std::string path = approved("chunks.txt", "Hello world");
  EXPECT_EQ(readChunkAsArrayBuffer(path, 0, 5), "data:text/plain;base64,SGVsbG8=");
  EXPECT_EQ(readChunkAsArrayBuffer(path, 6, 5), "data:text/plain;base64,d29ybGQ=");
  EXPECT_EQ(readChunkAsArrayBuffer(path, 10, 1), "data:text/plain;base64,ZA==");
}

TEST_F(FileReadingTest, AChunkOutsideTheFileIsRefused) {
  const std::string path = approved("range.txt", "Hello");
  for (const auto& [offset, size] : {std::pair<uint64_t, uint64_t>{0, 0},
                                     {5, 0},
                                     {0, 6},
                                     {5, 1},
                                     {0xFFFFFFFF, 1},
                                     {1, 0xFFFFFFFF},
                                     {~uint64_t{0}, 1},
                                     {1, ~uint64_t{0}},
                                     {~uint64_t{0}, ~uint64_t{0}}}) {
    const LogRecorder log;
    EXPECT_EQ(readChunkAsArrayBuffer(path, offset, size), kRange) << offset << "+" << size;
    EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{path + kSizeLine});
  }
}

TEST_F(FileReadingTest, AChunkMayLieBeyondFourGibibytes) {
  constexpr uint64_t kFar = 0xFFFFFFFFULL + 10;
  const std::string path = approvedSparse("far", kFar);
  {
    std::fstream file(TempFolder::native(path), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(kFar - 5));
    file << "Hello";
  }
  EXPECT_EQ(readChunkAsArrayBuffer(path, kFar - 5, 5),
            "data:application/octet-stream;base64,SGVsbG8=");
  EXPECT_EQ(readChunkAsArrayBuffer(path, 0xFFFFFFFF, 1),
            "data:application/octet-stream;base64,AA==");
}

TEST_F(FileReadingTest, AFailingOpenIsToldWithItsCode) {
  const std::string path = approved("closed", "x");
  openResult = kFailure;
  expectRefused(path, "Unable to open file: " + path, path + " file unable to open 5");
}

TEST_F(FileReadingTest, AFailingSeekIsToldAsAFailedRead) {
  const std::string path = approved("seek", "xy");
  seekResult = kFailure;
  const LogRecorder log;
  EXPECT_EQ(readChunkAsArrayBuffer(path, 1, 1), "Unable to open file: " + path);
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{path + " file unable to read 5"});
}

TEST_F(FileReadingTest, AFailingReadIsTold) {
  const std::string path = approved("unread", "x");
  readInstead = [](uint32_t, uint32_t*) { return kFailure; };
  expectRefused(path, "Unable to open file: " + path, path + " file unable to read 5");
}

TEST_F(FileReadingTest, AFileThatShrinksMeanwhileIsRefused) {
  const std::string path = approved("shrinks", std::string(1000, 'x'));
  int calls = 0;
  readInstead = [&calls](uint32_t, uint32_t* read) {
    *read = calls++ % 2 == 0 ? 100 : 0;
    return 0;
  };
  const LogRecorder log;
  EXPECT_EQ(readAsArrayBuffer(path), "Unable to open file: " + path);
  EXPECT_EQ(log.lines("ERR"), std::vector<std::string>{path + " file unable to read 0"});
}

TEST_F(FileReadingTest, AReadInSmallPiecesIsARead) {
  const std::string path = approved("slow", "Hello");
  readInstead = [](uint32_t length, uint32_t* read) {
    *read = length > 0 ? 1 : 0;
    return 0;
  };
  const std::string result = readChunkAsArrayBuffer(path, 0, 5);
  EXPECT_EQ(result.substr(result.find(',')).size(), 1u + 8u) << result;
}

TEST_F(FileReadingTest, AFailedEncodingIsABareText) {
  const std::string path = approved("encoded", "x");
  encodeResult = kFailure;
  expectRefused(path, "Error converting string encoding",
                "error converting to  base64 " + path + "  ");
}

}  // namespace
}  // namespace Vantrel::Web
