// Symbolic links, which Wine does not make and whose records it does not have: the calls are
// replaced by ours.
#include <windows.h>
#include <winioctl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

struct Links {
  DWORD refusal = 0;         // the code of a failing creation
  bool knowsFlag2 = true;    // whether the system lets any user make links
  std::vector<DWORD> flags;  // of each creation
  std::wstring link;
  std::wstring target;
  DWORD readError = 0;
  std::wstring shown;  // in the record that is read
} links;

BOOLEAN WINAPI createSymbolicLink(LPCWSTR link, LPCWSTR target, DWORD flags) {
  links.flags.push_back(flags);
  links.link = link;
  links.target = target;
  DWORD error = links.refusal;
  if (error == 0 && !links.knowsFlag2 && (flags & 2) != 0) error = ERROR_INVALID_PARAMETER;
  SetLastError(error);
  return error == 0 ? TRUE : FALSE;
}

BOOL WINAPI deviceIoControl(HANDLE, DWORD code, LPVOID, DWORD, LPVOID out, DWORD size,
                            LPDWORD length, LPOVERLAPPED) {
  EXPECT_EQ(DWORD{FSCTL_GET_REPARSE_POINT}, code);
  if (links.readError != 0) {
    SetLastError(links.readError);
    return FALSE;
  }
  // A mount point with a shown name only: kind, length, two names, the text.
  std::vector<uint16_t> record = {3, 0xA000, 0, 0, 0, 0, 0, 0};
  record[7] = static_cast<uint16_t>(links.shown.size() * 2);
  record.insert(record.end(), links.shown.begin(), links.shown.end());
  *length = static_cast<DWORD>(record.size() * 2);
  EXPECT_GE(size, *length);
  std::copy(record.begin(), record.end(), static_cast<uint16_t*>(out));
  return TRUE;
}

}  // namespace

extern "C" {
decltype(&CreateSymbolicLinkW) __imp_CreateSymbolicLinkW = createSymbolicLink;
decltype(&DeviceIoControl) __imp_DeviceIoControl = deviceIoControl;
}

namespace {

class FileLinksTest : public ::testing::Test {
 protected:
  FileLinksTest() : path_(folder_.path("link")) { links = {}; }

  const TempFolder folder_;
  const std::string path_;
};

TEST_F(FileLinksTest, LinkToAFileHasItsTextWithBackslashes) {
  EXPECT_EQ(0, ov_file_symlink("C:/some/\xC3\xA4", path_.c_str()));
  EXPECT_EQ(std::vector<DWORD>{2}, links.flags);
  EXPECT_EQ(L"C:\\some\\\u00E4", links.target);
  EXPECT_NE(std::wstring::npos, links.link.find(L"\\link"));
}

TEST_F(FileLinksTest, LinkToADirectoryIsMarked) {
  EXPECT_EQ(0, ov_file_symlink(folder_.path().c_str(), path_.c_str()));
  EXPECT_EQ(0, ov_dir_create(folder_.path("sub").c_str(), 0, 0));
  // A relative text counts from where the link is.
  EXPECT_EQ(0, ov_file_symlink("sub", path_.c_str()));
  EXPECT_EQ(0, ov_file_symlink("none", path_.c_str()));
  EXPECT_EQ((std::vector<DWORD>{3, 3, 2}), links.flags);
  EXPECT_EQ(L"none", links.target);
}

TEST_F(FileLinksTest, OlderSystemIsAskedWithoutTheRightForAll) {
  links.knowsFlag2 = false;
  EXPECT_EQ(0, ov_file_symlink("none", path_.c_str()));
  EXPECT_EQ((std::vector<DWORD>{2, 0}), links.flags);
}

TEST_F(FileLinksTest, RefusalIsTold) {
  links.refusal = ERROR_PRIVILEGE_NOT_HELD;
  EXPECT_EQ(1314, ov_file_symlink("none", path_.c_str()));
  EXPECT_EQ(1U, links.flags.size());
}

TEST_F(FileLinksTest, TargetHasForwardSlashes) {
  TempFolder::write(path_, "");
  links.shown = L"D:\\data\\\u00E4";
  char out[OV_PATH_SIZE];
  EXPECT_EQ(0, ov_file_readlink(path_.c_str(), out, sizeof out));
  EXPECT_STREQ("D:/data/\xC3\xA4", out);
  EXPECT_EQ(122, ov_file_readlink(path_.c_str(), out, 4));
  links.shown.assign(OV_PATH_SIZE, L'x');
  EXPECT_EQ(122, ov_file_readlink(path_.c_str(), out, sizeof out));
  links.readError = ERROR_NOT_A_REPARSE_POINT;
  EXPECT_EQ(4390, ov_file_readlink(path_.c_str(), out, sizeof out));
}

}  // namespace
