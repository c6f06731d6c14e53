// Reading what the user chose: the texts that the page gets, to the byte, and every refusal.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "tests/plugin/dialogs_fixture.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web {
namespace {

constexpr uint64_t kFiftyMebibytes = 50 << 20;
constexpr char kBytes[] = "data:application/octet-stream;base64,";
constexpr char kRange[] =
    "Offset and chunk size cannot be negative, and the sum can't be greater than the file size";

// So that "Hello" at the end stands for itself in the encoded text.
constexpr uint64_t kThreeReads = (2 << 20) + 3;
static_assert(kThreeReads % 3 == 2 && kFiftyMebibytes % 3 == 2);

// The form of a path for which the platform has no old limit.
std::filesystem::path longForm(const std::string& path) {
  std::wstring text = toWide(path);
  std::replace(text.begin(), text.end(), L'/', L'\\');
  return L"\\\\?\\" + text;
}

class ReadingTest : public DialogsTest {
 protected:
  void SetUp() override {
    DialogsTest::SetUp();
    dialogs_.emplace();
    instance_.emplace(host());
    approve(file_);
  }
  void TearDown() override {
    instance_.reset();
    dialogs_.reset();
    DialogsTest::TearDown();
  }
  void approve(const std::string& name) {
    dialogs_->chosen = {toWide(name)};
    instance_->call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)});
  }
  Value read(const std::string& name) { return DialogsTest::read(*instance_, name); }
  Value chunk(const Value& offset, const Value& size) { return chunk(file_, offset, size); }
  Value chunk(const std::string& name, const Value& offset, const Value& size) {
    return instance_->call("readChunkAsArrayBuffer", {text(name), offset, size}).value;
  }
  // An approved file of this size, which ends in "Hello" and takes no room on the disk where the
  // file system can do so.
  std::string sparse(const std::string& name, uint64_t size) {
    constexpr std::string_view kEnd = "Hello";
    const std::string file = path(name);
    TempFolder::write(file, "");
    std::filesystem::resize_file(TempFolder::native(file), size);
    std::fstream stream(TempFolder::native(file), std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(size - kEnd.size()));
    stream << kEnd;
    approve(file);
    return file;
  }
  HMODULE library() { return static_cast<HMODULE>(const_cast<void*>(host().module())); }

  std::optional<FakeFileDialogs> dialogs_;
  std::optional<Instance> instance_;
};

TEST_F(ReadingTest, ChunksAreCountedInWholeBytes) {
  EXPECT_EQ(chunk(Value::number(0), Value::number(5)), text(kHello));
  EXPECT_EQ(chunk(Value::number(1.9), Value::number(2.9)), text("data:text/plain;base64,ZWw="));
  EXPECT_EQ(chunk(Value::number(4294967296.0), Value::number(5)), text(kHello));
}

TEST_F(ReadingTest, WhatLiesOutsideTheFileIsRefusedInBareWords) {
  const Value range = text(kRange);
  EXPECT_EQ(chunk(Value::number(0), Value::number(0)), range);
  EXPECT_EQ(chunk(Value::number(-1), Value::number(1)), range);
  EXPECT_EQ(chunk(Value::number(0), Value::number(-1)), range);
  EXPECT_EQ(chunk(Value::number(5), Value::number(1)), range);
  EXPECT_EQ(chunk(Value::number(1e300), Value::number(6)), range);
}

TEST_F(ReadingTest, AFileOnOnePageIsReadOnAnother) {
  Instance other(host());
  EXPECT_EQ(DialogsTest::read(other, file_), text(kHello));
}

TEST_F(ReadingTest, AFileThatAnotherHoldsAloneCannotBeOpened) {
  const HANDLE held = CreateFileW(toWide(file_).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(read(file_), text("Unable to open file: " + file_));
  EXPECT_TRUE(logHas("ERR " + file_ + " file unable to open 32\r\n"));
  // The page's spelling is the one that it gets back.
  std::string slashes = file_;
  std::replace(slashes.begin(), slashes.end(), '\\', '/');
  EXPECT_EQ(read(slashes), text("Unable to open file: " + slashes));
  CloseHandle(held);
  EXPECT_EQ(read(file_), text(kHello));
  EXPECT_EQ(read(slashes), text(kHello));
}

TEST_F(ReadingTest, AnApprovedPathThatIsAFolderByNowIsRefused) {
  std::filesystem::remove(TempFolder::native(file_));
  std::filesystem::create_directory(TempFolder::native(file_));
  EXPECT_EQ(read(file_), text(errorReply("Invalid file type: " + file_)));
}

TEST_F(ReadingTest, AnApprovedPathIsReadWhateverFileStandsThereByNow) {
  TempFolder::write(path("other.txt"), "Other");
  std::filesystem::remove(TempFolder::native(file_));
  std::filesystem::rename(TempFolder::native(path("other.txt")), TempFolder::native(file_));
  EXPECT_EQ(read(file_), text("data:text/plain;base64,T3RoZXI="));
  std::filesystem::remove(TempFolder::native(file_));
  EXPECT_EQ(read(file_), text(errorReply("Invalid file type: " + file_)));
}

TEST_F(ReadingTest, AFileOfNoneAndOfOneByte) {
  TempFolder::write(file_, "");
  EXPECT_EQ(read(file_), text("data:;base64,"));
  EXPECT_EQ(chunk(Value::number(0), Value::number(1)), text(kRange));
  TempFolder::write(file_, "x");
  EXPECT_EQ(read(file_), text("data:text/plain;base64,eA=="));
  EXPECT_EQ(chunk(Value::number(0), Value::number(1)), text("data:text/plain;base64,eA=="));
}

TEST_F(ReadingTest, FiftyMebibytesAreReadAtOnceAndOneByteMoreIsNot) {
  const std::string file = sparse("large", kFiftyMebibytes);
  const std::string whole = read(file).text;
  ASSERT_EQ(whole.size(), std::strlen(kBytes) + (kFiftyMebibytes + 2) / 3 * 4);
  EXPECT_EQ(whole.substr(0, std::strlen(kBytes) + 8), std::string(kBytes) + "AAAAAAAA");
  EXPECT_TRUE(whole.ends_with("SGVsbG8="));
  const std::string longer = sparse("longer", kFiftyMebibytes + 1);
  EXPECT_EQ(read(longer), text("Exceeded maximum allowed file size: " + longer));
  EXPECT_EQ(chunk(longer, Value::number(double{kFiftyMebibytes - 4}), Value::number(5)),
            text(std::string(kBytes) + "SGVsbG8="));
}

TEST_F(ReadingTest, AChunkMayReachBeyondFourGibibytes) {
  constexpr double kFar = 4294967296.0 + 4;
  const std::string file = sparse("far", static_cast<uint64_t>(kFar));
  EXPECT_EQ(chunk(file, Value::number(kFar - 5), Value::number(5)),
            text(std::string(kBytes) + "SGVsbG8="));
  // An offset has 32 bits, of which a negative one sets all.
  EXPECT_EQ(chunk(file, Value::number(-1), Value::number(5)),
            text(std::string(kBytes) + "SGVsbG8="));
  EXPECT_EQ(chunk(file, Value::number(kFar), Value::number(2)), text(std::string(kBytes) + "AAA="));
}

TEST_F(ReadingTest, AnAnswerThatTheBrowserCannotCountIsAnErrorReply) {
  const std::string file = sparse("far", 0x100000000);
  const Value answer = chunk(file, Value::number(0), Value::number(-1));
  EXPECT_EQ(answer, text(errorReply("std::bad_alloc")));
}

TEST_F(ReadingTest, WithoutBrowserMemoryTheAnswerIsAnErrorReply) {
  host().memory.failAllocationAfter(0);
  EXPECT_EQ(read(file_), text(errorReply("std::bad_alloc")));
  EXPECT_EQ(read(file_), text(kHello));
}

TEST_F(ReadingTest, ANameMayBeLongerThanTheOldLimitOfPaths) {
  std::vector<std::string> folders = {temp_.path()};
  for (const char letter : {'a', 'b', 'c'}) {
    folders.push_back(folders.back() + '/' + std::string(120, letter));
    ASSERT_TRUE(std::filesystem::create_directory(longForm(folders.back())));
  }
  const std::string file = folders.back() + "/f.txt";
  std::ofstream(longForm(file), std::ios::binary) << "Hello";
  ASSERT_GT(file.size(), size_t{MAX_PATH});
  approve(file);
  EXPECT_EQ(read(file), text(kHello));
  EXPECT_EQ(chunk(file, Value::number(1), Value::number(2)), text("data:text/plain;base64,ZWw="));
  std::filesystem::remove(longForm(file));
  for (; folders.size() > 1; folders.pop_back()) std::filesystem::remove(longForm(folders.back()));
}

// What happens to the file between the look at its size and the opening for the read, which keeps
// other writers out.
std::function<void()> meanwhile;
decltype(&CreateFileW) realCreateFile = nullptr;

HANDLE WINAPI lateCreateFile(LPCWSTR name, DWORD access, DWORD share,
                             LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                             HANDLE like) {
  if (share == FILE_SHARE_READ) meanwhile();
  return realCreateFile(name, access, share, security, disposition, flags, like);
}

class ChangingFileTest : public ReadingTest {
 protected:
  void SetUp() override {
    ReadingTest::SetUp();
    patch_.emplace(library(), "CreateFileW", lateCreateFile);
    realCreateFile = patch_->former<HANDLE WINAPI(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES,
                                                  DWORD, DWORD, HANDLE)>();
  }
  void TearDown() override {
    patch_.reset();
    ReadingTest::TearDown();
  }

  std::optional<TestSupport::ImportPatch> patch_;
};

TEST_F(ChangingFileTest, AFileThatShrinksMeanwhileIsRefused) {
  meanwhile = [this] { TempFolder::write(file_, "Hell"); };
  EXPECT_EQ(read(file_), text("Unable to open file: " + file_));
  EXPECT_TRUE(logHas("ERR " + file_ + " file unable to read 0\r\n"));
  EXPECT_EQ(read(file_), text("data:text/plain;base64,SGVsbA=="));
  meanwhile = [this] { TempFolder::write(file_, "H"); };
  EXPECT_EQ(chunk(Value::number(1), Value::number(3)), text("Unable to open file: " + file_));
}

// Its type is not known then.
TEST_F(ChangingFileTest, AFileThatGrowsMeanwhileIsReadAsLongAsItWas) {
  meanwhile = [this] { TempFolder::write(file_, "Hello world"); };
  EXPECT_EQ(read(file_), text("data:;base64,SGVsbG8="));
}

TEST_F(ChangingFileTest, AFileThatIsGoneMeanwhileIsRefused) {
  meanwhile = [this] { std::filesystem::remove(TempFolder::native(file_)); };
  EXPECT_EQ(read(file_), text("Unable to open file: " + file_));
  EXPECT_TRUE(logHas("ERR " + file_ + " file unable to open 2\r\n"));
}

int readsLeft = 0;
decltype(&ReadFile) realReadFile = nullptr;

BOOL WINAPI lockedReadFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD count,
                           LPOVERLAPPED overlapped) {
  if (readsLeft-- != 0) return realReadFile(file, buffer, length, count, overlapped);
  *count = 0;
  SetLastError(ERROR_LOCK_VIOLATION);
  return FALSE;
}

// Wine's locks keep no reader of the same process out; what Windows answers is played, behind the
// read for the type and one of the content.
TEST_F(ReadingTest, AFileThatIsLockedWhileItIsReadIsRefused) {
  const std::string file = sparse("large", kThreeReads);
  const TestSupport::ImportPatch patch(library(), "ReadFile", lockedReadFile);
  realReadFile = patch.former<BOOL WINAPI(HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED)>();
  readsLeft = 2;
  EXPECT_EQ(read(file), text("Unable to open file: " + file));
  EXPECT_TRUE(logHas("ERR " + file + " file unable to read 33\r\n"));
  EXPECT_TRUE(read(file).text.ends_with("SGVsbG8="));
}

size_t largestBlock = 0;
decltype(&std::malloc) realMalloc = nullptr;

void* notedMalloc(size_t size) {
  largestBlock = std::max(largestBlock, size);
  return realMalloc(size);
}

TEST_F(ReadingTest, AnAnswerIsBuiltInTheBlockThatThePageGets) {
  constexpr size_t kSize = (16 << 20) + 1;
  const std::string file = sparse("large", kSize);
  const TestSupport::ImportPatch patch(library(), "malloc", notedMalloc);
  realMalloc = patch.former<void*(size_t)>();
  const int before = host().calls.count("NPN_MemAlloc");
  EXPECT_TRUE(read(file).text.ends_with("SGVsbG8="));
  EXPECT_EQ(host().calls.count("NPN_MemAlloc"), before + 1);
  EXPECT_GT(largestBlock, 0u);
  EXPECT_LT(largestBlock, size_t{1} << 20);
}

}  // namespace
}  // namespace Vantrel::Web
