// Failures of files and directories that do not happen by themselves: the import is replaced by one
// of ours.
#include <windows.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cwchar>
#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;
using Messages = std::vector<std::string>;

struct Faults {
  DWORD read = 0;
  int readFailures = 0;
  DWORD setEnd = 0;
  DWORD findFirst = 0;
  DWORD findNext = 0;
  DWORD fileInformation = 0;
  DWORD fileType = FILE_TYPE_UNKNOWN;
  bool mountPoint = false;
  std::wstring longName;  // found instead of the entry "long"
  // Somebody makes a directory or a file where ours was to be, just before we do.
  enum class Race { kNone, kDirectory, kFile } race = Race::kNone;
  std::wstring link;        // shown as a link
  DWORD linkTag = 0;        // its kind; 0 if the system does not tell
  std::wstring followed;    // what is opened in place of the link, unless the link itself is
  std::wstring linkTarget;  // where its content is when the link is removed
  int linksRemoved = 0;
  DWORD write = 0;        // the code of a failing write
  DWORD writeAtMost = 0;  // bytes, if not 0
  bool writeNothing = false;
  std::vector<DWORD> slept;
} faults;

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

BOOL WINAPI readFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD read, LPOVERLAPPED o) {
  if (faults.readFailures > 0) {
    --faults.readFailures;
    SetLastError(faults.read);
    return FALSE;
  }
  return real<decltype(&ReadFile)>("ReadFile")(file, buffer, length, read, o);
}

void WINAPI sleepFor(DWORD milliseconds) {
  faults.slept.push_back(milliseconds);
}

BOOL WINAPI setEndOfFile(HANDLE file) {
  if (faults.setEnd == 0) return real<decltype(&SetEndOfFile)>("SetEndOfFile")(file);
  SetLastError(faults.setEnd);
  return FALSE;
}

HANDLE WINAPI findFirstFile(LPCWSTR path, LPWIN32_FIND_DATAW data) {
  if (faults.findFirst == 0) return real<decltype(&FindFirstFileW)>("FindFirstFileW")(path, data);
  SetLastError(faults.findFirst);
  return INVALID_HANDLE_VALUE;
}

BOOL WINAPI findNextFile(HANDLE handle, LPWIN32_FIND_DATAW data) {
  if (faults.findNext != 0) {
    SetLastError(faults.findNext);
    return FALSE;
  }
  const BOOL found = real<decltype(&FindNextFileW)>("FindNextFileW")(handle, data);
  // Wine's host has no names of more than 255 bytes.
  if (found != FALSE && !faults.longName.empty() && std::wstring(data->cFileName) == L"long") {
    wcscpy(data->cFileName, faults.longName.c_str());
  }
  return found;
}

bool isLink(LPCWSTR path) {
  const std::wstring text = path;
  return !faults.link.empty() && text.ends_with(faults.link);
}

HANDLE WINAPI findFirstFileEx(LPCWSTR path, FINDEX_INFO_LEVELS level, LPVOID data,
                              FINDEX_SEARCH_OPS search, LPVOID filter, DWORD flags) {
  const HANDLE found = real<decltype(&FindFirstFileExW)>("FindFirstFileExW")(path, level, data,
                                                                             search, filter, flags);
  if (faults.mountPoint) {
    static_cast<WIN32_FIND_DATAW*>(data)->dwReserved0 = IO_REPARSE_TAG_MOUNT_POINT;
  }
  if (isLink(path)) static_cast<WIN32_FIND_DATAW*>(data)->dwReserved0 = faults.linkTag;
  return found;
}

BOOL WINAPI getFileAttributesEx(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
  const BOOL good =
      real<decltype(&GetFileAttributesExW)>("GetFileAttributesExW")(path, level, data);
  if (good && faults.mountPoint) {
    auto* const attributes = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data);
    attributes->dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    attributes->ftCreationTime = {};  // before 1970: the library's status is not asked
  }
  if (good && isLink(path)) {
    static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data)->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  }
  return good;
}

HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                         DWORD disposition, DWORD flags, HANDLE model) {
  const bool follow = isLink(path) && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0;
  const bool away = follow && !faults.followed.empty();
  return real<decltype(&CreateFileW)>("CreateFileW")(away ? faults.followed.c_str() : path, access,
                                                     share, security, disposition, flags, model);
}

// As msvcrt does on Windows: a path with "?" is none. Wine's takes it.
int wideStatus(const wchar_t* path, struct _stat64* status) {
  if (wcschr(path, L'?') == nullptr) {
    const auto real64 = reinterpret_cast<int (*)(const wchar_t*, struct _stat64*)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt"), "_wstat64")));
    return real64(path, status);
  }
  errno = ENOENT;
  return -1;
}

BOOL WINAPI writeFile(HANDLE file, LPCVOID data, DWORD length, LPDWORD written, LPOVERLAPPED o) {
  if (faults.write != 0) {
    SetLastError(faults.write);
    return FALSE;
  }
  if (faults.writeAtMost != 0 && length > faults.writeAtMost) length = faults.writeAtMost;
  if (faults.writeNothing) length = 0;
  return real<decltype(&WriteFile)>("WriteFile")(file, data, length, written, o);
}

BOOL WINAPI createDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
  const auto create = real<decltype(&CreateDirectoryW)>("CreateDirectoryW");
  if (faults.race == Faults::Race::kDirectory) create(path, security);
  if (faults.race == Faults::Race::kFile) {
    CloseHandle(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  }
  return create(path, security);
}

DWORD WINAPI getFileAttributes(LPCWSTR path) {
  const DWORD attributes = real<decltype(&GetFileAttributesW)>("GetFileAttributesW")(path);
  return isLink(path) ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
}

// Takes a link away and leaves what it leads to.
BOOL WINAPI removeDirectory(LPCWSTR path) {
  if (!isLink(path)) return real<decltype(&RemoveDirectoryW)>("RemoveDirectoryW")(path);
  ++faults.linksRemoved;
  return MoveFileW(path, faults.linkTarget.c_str());
}

BOOL WINAPI fileInformation(HANDLE file, LPBY_HANDLE_FILE_INFORMATION data) {
  if (faults.fileInformation == 0) {
    return real<decltype(&GetFileInformationByHandle)>("GetFileInformationByHandle")(file, data);
  }
  SetLastError(faults.fileInformation);
  return FALSE;
}

DWORD WINAPI fileType(HANDLE) {
  return faults.fileType;
}

}  // namespace

extern "C" {
decltype(&ReadFile) __imp_ReadFile = readFile;
decltype(&Sleep) __imp_Sleep = sleepFor;
decltype(&SetEndOfFile) __imp_SetEndOfFile = setEndOfFile;
decltype(&FindFirstFileW) __imp_FindFirstFileW = findFirstFile;
decltype(&FindNextFileW) __imp_FindNextFileW = findNextFile;
decltype(&FindFirstFileExW) __imp_FindFirstFileExW = findFirstFileEx;
decltype(&GetFileAttributesExW) __imp_GetFileAttributesExW = getFileAttributesEx;
decltype(&WriteFile) __imp_WriteFile = writeFile;
decltype(&CreateFileW) __imp_CreateFileW = createFile;
decltype(&wideStatus) __imp__wstat64 = wideStatus;
decltype(&CreateDirectoryW) __imp_CreateDirectoryW = createDirectory;
decltype(&GetFileAttributesW) __imp_GetFileAttributesW = getFileAttributes;
decltype(&RemoveDirectoryW) __imp_RemoveDirectoryW = removeDirectory;
decltype(&GetFileInformationByHandle) __imp_GetFileInformationByHandle = fileInformation;
decltype(&GetFileType) __imp_GetFileType = fileType;
}

namespace {

class FilesWinTest : public ::testing::Test {
 protected:
  FilesWinTest() : path_(folder_.path("file")) {
    faults = {};
    TempFolder::write(path_, "content");
  }
  ~FilesWinTest() override { faults = {}; }

  const TempFolder folder_;
  const std::string path_;
  ov::CapturedLog log_;
};

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

  faults.readFailures = 11;
  EXPECT_EQ(1450, ov_file_read(&file, buffer, sizeof buffer, &count));
  EXPECT_EQ(0U, count);
  expected.push_back("ERR ov_fileread: ReadFile failed. error=1450");
  EXPECT_EQ(expected, log_.take());
  EXPECT_EQ(0, faults.readFailures);
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

TEST_F(FilesWinTest, EmptyRootOfAVolumeIsAnEmptyDirectory) {
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

TEST_F(FilesWinTest, DirectoryReadFailures) {
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

TEST_F(FilesWinTest, MountPointCountsAsADirectory) {
  faults.mountPoint = true;
  ov_stat record;
  ASSERT_EQ(0, ov_file_stat(path_.c_str(), &record, 0));
  EXPECT_EQ(OV_TYPE_DIRECTORY, record.type);
  EXPECT_EQ(16895, record.mode);
  EXPECT_GT(0, record.created);
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

ov_rc note(const char*, int32_t created, void* argument) {
  static_cast<std::vector<int32_t>*>(argument)->push_back(created);
  return 0;
}

TEST_F(FilesWinTest, DirectoryThatSomebodyElseMakesInBetweenIsThere) {
  std::vector<int32_t> told;
  faults.race = Faults::Race::kDirectory;
  const std::string made = folder_.path("made");
  EXPECT_EQ(0, ov_dir_create_callback(made.c_str(), 0, 0, note, &told));
  EXPECT_EQ((std::vector<int32_t>{0}), told);
  EXPECT_EQ(1, ov_path_is_dir(made.c_str()));
  faults.race = Faults::Race::kFile;
  EXPECT_EQ(267, ov_dir_create(folder_.path("blocked").c_str(), 0, 0));
}

TEST_F(FilesWinTest, RecursiveDeleteRemovesALinkAndLeavesWhatItLeadsTo) {
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

TEST_F(FilesWinTest, DeleteOfALinkItselfRemovesOnlyTheLink) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("link").c_str(), 0, 0));
  TempFolder::write(folder_.path("link/precious"), "kept");
  faults.link = L"\\link";
  faults.linkTarget = TempFolder::native(folder_.path("target")).wstring();
  EXPECT_EQ(0, ov_dir_delete(folder_.path("link").c_str(), 1));
  faults.link.clear();
  EXPECT_EQ("kept", TempFolder::read(folder_.path("target/precious")));
}

// A store in the cloud marks what it keeps for us; a link has the bit of a name's surrogate.
TEST_F(FilesWinTest, RecursiveDeleteGoesIntoWhatIsNoSurrogate) {
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

TEST_F(FilesWinTest, RecursiveDeleteLeavesWhatASurrogateLeadsTo) {
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

TEST_F(FilesWinTest, WalksGoOnBehindANameThatHasNoRoom) {
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

TEST_F(FilesWinTest, EntryWithoutRoomForItsNameTellsThatThereIsOne) {
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

TEST_F(FilesWinTest, RecursiveDeleteTakesWhatItHasRoomToName) {
  ASSERT_EQ(0, ov_dir_create(folder_.path("tree").c_str(), 0, 0));
  for (const char* name : {"a", "long", "z"}) TempFolder::write(folder_.path("tree/") + name, "");
  faults.longName.assign(255, L'\u20AC');
  EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ov_dir_delete(folder_.path("tree").c_str(), 1));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree/a").c_str()));
  EXPECT_EQ(0, ov_path_exists(folder_.path("tree/z").c_str()));
}

TEST_F(FilesWinTest, DirectoryMayEndInABackslash) {
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

TEST_F(FilesWinTest, EmptyPathDeletesNothing) {
  const ov_rc refused = ov_dir_delete("", 0);
  EXPECT_NE(0, refused);
  faults.findFirst = ERROR_ACCESS_DENIED;  // no directory is so much as opened
  EXPECT_EQ(refused, ov_dir_delete("", 1));
}

TEST_F(FilesWinTest, PathTooLongForASearchIsRefused) {
  ov_dir dir;
  EXPECT_EQ(0, ov_dir_open(folder_.path().c_str(), &dir));
  EXPECT_EQ(0, ov_dir_close(&dir));
  // The mark of a long path adds four characters; 518 are the most.
  const std::string fits = "C:/" + std::string(511, 'x');
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, ov_dir_open(fits.c_str(), &dir));
  EXPECT_EQ(122, ov_dir_open((fits + "x").c_str(), &dir));
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
