// What is known of a file.
#include <windows.h>
#include <sys/stat.h>

#include "runtime/errors/last_code.h"
#include "runtime/files/handle.h"
#include "runtime/files/internal.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_time.h"
#include "runtime/paths/wide_path_win.h"

using namespace ov;

static_assert(sizeof(ov_stat) == 72);

namespace {

constexpr int32_t kDirectoryMode = 040777;
constexpr int32_t kFileMode = 0100666;
constexpr int32_t kWriteBits = 0222;
constexpr int32_t kModeTypeMask = 0xF000;
constexpr int32_t kModeCharacterDevice = 0x2000;
constexpr int32_t kModeDirectory = 0x4000;
constexpr int32_t kModeRegular = 0x8000;

uint64_t joined(DWORD high, DWORD low) {
  return (uint64_t{high} << 32) | low;
}

int64_t epoch_of(const FILETIME& time) {
  int64_t seconds = 0;
  ov_time_convert_epoch(&seconds,
                        static_cast<int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)));
  return seconds;
}

void set_kind(ov_stat* record, bool directory) {
  record->type = directory ? OV_TYPE_DIRECTORY : OV_TYPE_REGULAR;
  record->mode = directory ? kDirectoryMode : kFileMode;
}

// Fills from any of the platform's records of a file, which name these members alike.
template <typename Data>
void fill(ov_stat* record, const Data& data) {
  record->size = joined(data.nFileSizeHigh, data.nFileSizeLow);
  record->created = epoch_of(data.ftCreationTime);
  record->modified = epoch_of(data.ftLastWriteTime);
  record->accessed = epoch_of(data.ftLastAccessTime);
  set_kind(record, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
  // Not left to the standard library: msvcrt refuses every path with "?", so every long one.
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) record->mode &= ~kWriteBits;
}

void fill_identity(ov_stat* record, const BY_HANDLE_FILE_INFORMATION& data) {
  record->id = joined(data.nFileIndexHigh, data.nFileIndexLow);
  record->links = static_cast<int32_t>(data.nNumberOfLinks);
}

// Tells what kind of link a reparse point is; 0 if the system does not say. Wine shows a link of
// the host with the attribute and the tag 0.
DWORD reparse_tag(const wchar_t* path) {
  WIN32_FIND_DATAW found;
  const HANDLE handle =
      FindFirstFileExW(path, FindExInfoStandard, &found, FindExSearchNameMatch, nullptr, 0);
  if (handle == INVALID_HANDLE_VALUE) return 0;
  FindClose(handle);
  return found.dwReserved0;
}

// Mode and owner as the standard library tells them; a failure there changes nothing.
void take_library_status(ov_stat* record, const wchar_t* path) {
  struct _stat64 status;
  if (_wstat64(path, &status) != 0) return;
  record->mode = status.st_mode;
  record->uid = status.st_uid;
  record->gid = status.st_gid;
  switch (record->mode & kModeTypeMask) {
    case kModeRegular:
      record->type = OV_TYPE_REGULAR;
      break;
    case kModeDirectory:
      record->type = OV_TYPE_DIRECTORY;
      break;
    case kModeCharacterDevice:
      record->type = OV_TYPE_CHARACTER_DEVICE;
      break;
    default:
      record->type = OV_TYPE_OTHER;
  }
}

// Opens what is at `path`, or what a link there leads to, to look at it.
HANDLE open_to_look(const wchar_t* path, DWORD access, bool follow) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_ATTRIBUTE_NORMAL;
  return CreateFileW(path, access, kShare, nullptr, OPEN_EXISTING,
                     follow ? kFlags : kFlags | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

ov_rc read_information(const wchar_t* path, DWORD access, bool follow,
                       BY_HANDLE_FILE_INFORMATION* data) {
  const FileHandle file(open_to_look(path, access, follow));
  if (!file) return last_code();
  return code_of(GetFileInformationByHandle(file.get(), data));
}

// Fills all of the record from what a symbolic link leads to, so that its parts are of one object.
ov_rc fill_from_target(ov_stat* record, const wchar_t* path, bool identity) {
  BY_HANDLE_FILE_INFORMATION data = {};
  const ov_rc error = read_information(path, FILE_READ_ATTRIBUTES, true, &data);
  if (error != 0) return error;
  fill(record, data);
  if (identity) fill_identity(record, data);
  return 0;
}

ov_rc take_identity(ov_stat* record, const wchar_t* path, bool follow) {
  BY_HANDLE_FILE_INFORMATION data = {};
  const ov_rc error = read_information(path, GENERIC_READ, follow, &data);
  if (error == 0) fill_identity(record, data);
  return error;
}

}  // namespace

// A directory that only holds its content elsewhere, such as one of a store in the cloud, is one to
// go into; a tag that is not known is taken for a link, since its content may not be ours.
bool ov::is_directory_link(const char* path) {
  const WidePath wide(path);
  if (wide.error != 0) return false;
  const DWORD attributes = GetFileAttributesW(wide.text);
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  const DWORD tag = reparse_tag(wide.text);
  return tag == 0 || IsReparseTagNameSurrogate(tag);
}

ov_rc ov_file_stat(const char* path, ov_stat* record, int32_t flags) {
  if (record == nullptr) return OV_EINVAL;
  const WidePath wide(path);
  if (wide.error != 0) return wide.error;
  *record = {};
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExW(wide.text, GetFileExInfoStandard, &data)) return last_code();
  const bool identity = (flags & OV_STAT_IDENTITY) != 0;
  const bool follow = (flags & OV_STAT_NO_FOLLOW) == 0;
  const bool reparse = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  const DWORD tag = reparse ? reparse_tag(wide.text) : 0;
  // Wine makes no such link, so only replaced calls have shown this.
  const bool link = tag == IO_REPARSE_TAG_SYMLINK;
  if (link && follow) return fill_from_target(record, wide.text, identity);
  fill(record, data);
  if (record->type == OV_TYPE_REGULAR && tag == IO_REPARSE_TAG_MOUNT_POINT) set_kind(record, true);
  if (record->created >= 0 && !link) take_library_status(record, wide.text);
  return identity ? take_identity(record, wide.text, follow || !link) : 0;
}

ov_rc ov_file_fstat(ov_file* file, ov_stat* record) {
  if (file == nullptr || record == nullptr) return OV_EINVAL;
  *record = {};
  BY_HANDLE_FILE_INFORMATION data = {};
  if (!GetFileInformationByHandle(*file, &data)) {
    const ov_rc error = last_code();
    if (GetFileType(*file) != FILE_TYPE_CHAR) return error;
    record->type = OV_TYPE_CHARACTER_DEVICE;
    record->mode = kModeCharacterDevice;
    return 0;
  }
  fill(record, data);
  fill_identity(record, data);
  return 0;
}
