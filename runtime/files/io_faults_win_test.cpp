// Reading, writing, status and copies when the system fails or does less than it was asked.
#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/failing_files_win.h"

namespace {

using ov::TempFolder;
using Messages = std::vector<std::string>;
using FilesWinTest = ov::FailingFilesTest;

TEST_F(FilesWinTest, ReadIsRetriedTenTimesWhenResourcesAreShort) {
  ov_file file;
  ASSERT_EQ(0, ov_file_openread(path_.c_str(), &file));
  char buffer[16];
  uint32_t count = 0;
  faults.read = ERROR_NO_SYSTEM_RESOURCES;
  faults.readFailures = 10;
  EXPECT_EQ(0, ov_file_read(&file, buffer, sizeof buffer, &count));
  EXPECT_EQ(7U, count);
  Messages expected;
  for (int i = 0; i < 10; ++i) {
    expected.push_back("ERR ov_fileread: resource error 1450, retrying after " +
                       std::to_string(i < 5 ? 0 : 10) + " ms");
  }
  EXPECT_EQ(expected, log_.take());
  EXPECT_EQ(std::vector<DWORD>(5, 10), faults.slept);  // a delay of 0 does not sleep

  faults.slept.clear();
  faults.readFailures = 11;
  EXPECT_EQ(1450, ov_file_read(&file, buffer, sizeof buffer, &count));
  EXPECT_EQ(0U, count);
  expected.push_back("ERR ov_fileread: ReadFile failed. error=1450");
  EXPECT_EQ(expected, log_.take());
  EXPECT_EQ(0, faults.readFailures);
  EXPECT_EQ(std::vector<DWORD>(5, 10), faults.slept);  // none behind the last failure
  EXPECT_EQ(0, ov_file_close(&file));
}

TEST_F(FilesWinTest, OtherReadErrorsAreLoggedAndReturned) {
  ov_file file;
  ASSERT_EQ(0, ov_file_openread(path_.c_str(), &file));
  char buffer[16];
  uint32_t count = 9;
  faults.read = ERROR_CRC;
  faults.readFailures = 1;
  EXPECT_EQ(ERROR_CRC, ov_file_read(&file, buffer, sizeof buffer, &count));
  EXPECT_EQ(0U, count);
  EXPECT_EQ(Messages{"ERR ov_fileread: ReadFile failed. error=23"}, log_.take());
  faults.readFailures = 1;
  EXPECT_EQ(ERROR_CRC, ov_file_copy(path_.c_str(), folder_.path("to").c_str(), 0));
  EXPECT_EQ(0, ov_file_close(&file));
}

TEST_F(FilesWinTest, PipeWhoseOtherEndHasGoneIsAtItsEnd) {
  HANDLE out = nullptr;
  ov_file in = nullptr;
  ASSERT_TRUE(CreatePipe(&in, &out, nullptr, 0));
  CloseHandle(out);
  char buffer[4];
  uint32_t count = 9;
  EXPECT_EQ(0, ov_file_read(&in, buffer, sizeof buffer, &count));
  EXPECT_EQ(0U, count);
  EXPECT_EQ(0, ov_file_close(&in));
  EXPECT_EQ(Messages{}, log_.take());
}

TEST_F(FilesWinTest, OpenWriteThatCannotEmptyTheFileClosesIt) {
  faults.setEnd = ERROR_DISK_FULL;
  ov_file file;
  EXPECT_EQ(ERROR_DISK_FULL, ov_file_openwrite(path_.c_str(), &file, 0));
  EXPECT_EQ(0, ov_file_valid(&file));
  EXPECT_EQ(0, ov_file_delete(path_.c_str()));  // nothing holds it open
}

TEST_F(FilesWinTest, SeekFailuresAreLogged) {
  ov_file file;
  uint32_t count = 0;
  ASSERT_EQ(0, ov_file_openrw(path_.c_str(), &file, 0));
  EXPECT_EQ(131, ov_file_seek(&file, -1, 0));
  EXPECT_EQ(131, ov_file_pwrite(&file, "x", 1, -1, &count));
  EXPECT_EQ(131, ov_file_truncate(&file, -1));
  faults.setEnd = 112;
  EXPECT_EQ(112, ov_file_truncate(&file, 1));
  EXPECT_EQ((Messages{"LOG ov_file_seek: SetFilePointerEx failed, error=131",
                      "LOG ov_file_seek: SetFilePointerEx failed, error=131",
                      "LOG ov_filetruncate: SetFilePointerEx failed, error=131",
                      "LOG ov_filetruncate: SetFileEnd failed, error=112"}),
            log_.take());
  EXPECT_EQ(0, ov_file_close(&file));
  EXPECT_EQ(22, ov_file_seek(nullptr, 0, 0));
  EXPECT_EQ(22, ov_file_truncate(nullptr, 0));
  EXPECT_EQ(22, ov_file_pwrite(&file, nullptr, 0, 0, &count));
}

TEST_F(FilesWinTest, StatusOfAHandle) {
  ov_file file;
  ov_stat record;
  ASSERT_EQ(0, ov_file_openread(path_.c_str(), &file));
  ASSERT_EQ(0, ov_file_fstat(&file, &record));
  EXPECT_EQ(33206, record.mode);
  EXPECT_EQ(1, record.links);
  faults.fileInformation = ERROR_INVALID_FUNCTION;
  EXPECT_EQ(ERROR_INVALID_FUNCTION, ov_file_fstat(&file, &record));
  faults.fileType = FILE_TYPE_CHAR;
  EXPECT_EQ(0, ov_file_fstat(&file, &record));
  EXPECT_EQ(OV_TYPE_CHARACTER_DEVICE, record.type);
  EXPECT_EQ(0x2000, record.mode);
  faults.fileInformation = 5;
  EXPECT_EQ(5, ov_file_stat(path_.c_str(), &record, OV_STAT_IDENTITY));
  EXPECT_EQ(0, ov_file_close(&file));
}

TEST_F(FilesWinTest, CloseThatFailsKeepsTheRecord) {
  auto* file = reinterpret_cast<ov_file>(uintptr_t{0x7FFFFFF0});
  EXPECT_EQ(6, ov_file_close(&file));
  EXPECT_EQ(1, ov_file_valid(&file));
  EXPECT_EQ(6, ov_file_flush(&file));
}

// A store in the cloud marks what it keeps for us; a link has the bit of a name's surrogate.

TEST_F(FilesWinTest, WriteBitsComeFromTheAttributes) {
  ov_stat record;
  ASSERT_EQ(0, ov_file_permissions(path_.c_str(), 0444));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(0100444, record.mode);
  ov_file file;
  ASSERT_EQ(0, ov_file_openread(path_.c_str(), &file));
  ASSERT_EQ(0, ov_file_fstat(&file, &record));
  EXPECT_EQ(0100444, record.mode);
  EXPECT_EQ(0, ov_file_close(&file));
  ASSERT_EQ(0, ov_file_permissions(path_.c_str(), 0666));
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(0100666, record.mode);
  ASSERT_EQ(0, ov_file_stat(folder_.path().c_str(), &record, 0));
  EXPECT_EQ(040777, record.mode);
}

TEST_F(FilesWinTest, SymbolicLinkIsFollowedAsAWhole) {
  const std::string target = folder_.path("target");
  const std::string link = folder_.path("link");
  TempFolder::write(target, "longer content");
  TempFolder::write(link, "");
  const int64_t then = 1000000000;
  ASSERT_EQ(0, ov_file_utime(target.c_str(), &then, &then));
  ov_stat expected;
  ASSERT_EQ(0, ov_file_stat(target.c_str(), &expected, OV_STAT_IDENTITY));
  ov_stat own;
  ASSERT_EQ(0, ov_file_stat(link.c_str(), &own, OV_STAT_IDENTITY));
  faults.link = L"\\link";
  faults.linkTag = IO_REPARSE_TAG_SYMLINK;
  faults.followed = TempFolder::native(target).wstring();
  ov_stat record;
  ASSERT_EQ(0, ov_file_stat(link.c_str(), &record, OV_STAT_IDENTITY));
  EXPECT_EQ(expected.size, record.size);
  EXPECT_EQ(expected.modified, record.modified);
  EXPECT_EQ(expected.id, record.id);
  EXPECT_EQ(OV_TYPE_REGULAR, record.type);
  ASSERT_EQ(0, ov_file_stat(link.c_str(), &record, 0));
  EXPECT_EQ(expected.size, record.size);
  EXPECT_EQ(0U, record.id);
  // The link itself, when it is not to be followed.
  ASSERT_EQ(0, ov_file_stat(link.c_str(), &record, OV_STAT_IDENTITY | OV_STAT_NO_FOLLOW));
  EXPECT_EQ(0U, record.size);
  EXPECT_EQ(own.id, record.id);
  // It may lead to a directory, or nowhere.
  faults.followed = TempFolder::native(folder_.path()).wstring();
  EXPECT_EQ(1, ov_path_is_dir(link.c_str()));
  faults.followed = TempFolder::native(folder_.path("none")).wstring();
  EXPECT_EQ(2, ov_file_stat(link.c_str(), &record, 0));
  EXPECT_EQ(0, ov_file_stat(link.c_str(), &record, OV_STAT_NO_FOLLOW));
}

TEST_F(FilesWinTest, CopyWritesOnUntilAllIsOut) {
  const std::string content(10000, 'x');
  TempFolder::write(path_, content);
  const std::string to = folder_.path("to");
  faults.writeAtMost = 1000;
  EXPECT_EQ(0, ov_file_copy(path_.c_str(), to.c_str(), 0));
  EXPECT_EQ(content, TempFolder::read(to));
  faults.writeNothing = true;
  EXPECT_EQ(ERROR_GEN_FAILURE, ov_file_copy(path_.c_str(), to.c_str(), 0));
  EXPECT_EQ("", TempFolder::read(to));
}

TEST_F(FilesWinTest, FailedCopyKeepsWhatWasWritten) {
  TempFolder::write(path_, std::string(10000, 'x'));
  const std::string to = folder_.path("to");
  faults.write = ERROR_DISK_FULL;
  EXPECT_EQ(ERROR_DISK_FULL, ov_file_copy(path_.c_str(), to.c_str(), 0));
  faults.write = 0;
  EXPECT_EQ("", TempFolder::read(to));
  // Both files are closed.
  EXPECT_EQ(0, ov_file_delete(to.c_str()));
  faults.fileInformation = ERROR_CRC;
  EXPECT_EQ(ERROR_CRC, ov_file_copy(path_.c_str(), to.c_str(), 0));
  EXPECT_EQ(0, ov_file_delete(to.c_str()));
  EXPECT_EQ(0, ov_file_delete(path_.c_str()));
}

TEST_F(FilesWinTest, WriteFailureIsReturned) {
  ov_file file;
  uint32_t count = 9;
  ASSERT_EQ(0, ov_file_openwrite(path_.c_str(), &file, 0));
  faults.write = ERROR_DISK_FULL;
  EXPECT_EQ(ERROR_DISK_FULL, ov_file_write(&file, "x", 1, &count));
  EXPECT_EQ(0U, count);
  faults.write = 0;
  EXPECT_EQ(0, ov_file_close(&file));
}

}  // namespace
