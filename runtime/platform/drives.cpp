// The drives, and the space on them.
#include <memory>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity.h"
#include "runtime/platform/record_list.h"

using namespace ov;

static_assert(sizeof(ov_drive::path) == OV_PATH_SIZE && sizeof(ov_mount::path) == OV_PATH_SIZE);

namespace {

constexpr size_t kRootsUnits = 4096;

ov_rc list_drives(RecordList<ov_drive>* drives) {
  struct Roots {
    uint16_t units[kRootsUnits];
  };
  const std::unique_ptr<Roots> roots(new (std::nothrow) Roots);
  if (roots == nullptr) return OV_ENOMEM;
  ov_rc error = drive_roots(roots->units, kRootsUnits);
  const uint16_t* root = roots->units;
  while (error == 0 && *root != 0) {
    ov_drive* const drive = drives->append();
    if (drive == nullptr) return OV_ENOMEM;
    size_t bytes = sizeof drive->path;
    error = ov_utf16_to_utf8(root, 0, drive->path, &bytes);
    ov_file_tounixpath(drive->path);
    root += ov_utf16_len(root) + 1;
  }
  return error;
}

// The system wants the share of a network path with a separator behind it. `slashed` becomes the
// form in which a network path is known as one.
ov_rc terminate_network_path(char* path, char (&slashed)[OV_PATH_SIZE]) {
  ov_str_ncpy(slashed, path, sizeof slashed);
  ov_file_tounixpath(slashed);
  const size_t length = ov_utf8_len(slashed);
  if (!ov_path_is_unc_path(slashed) || slashed[length - 1] == '/') return 0;
  ov_str_ncat(slashed, "/", sizeof slashed);
  return ov_str_ncat(path, "/", OV_PATH_SIZE);
}

ov_rc add_mount(RecordList<ov_mount>* mounts, const char* path) {
  ov_mount* const mount = mounts->append();
  if (mount == nullptr) return OV_ENOMEM;
  ov_rc error = ov_str_ncpy(mount->path, path, sizeof mount->path);
  char slashed[OV_PATH_SIZE];
  if (error == 0) error = terminate_network_path(mount->path, slashed);
  if (error != 0) return error;
  error = volume_space(ov_path_is_unc_path(slashed) ? slashed : mount->path, &mount->total,
                       &mount->free);
  if (error != 0) {
    mount->total = 0;
    mount->free = 0;
  }
  if (error == OV_ENOTREADY) {
    mount->error = error;
    return 0;
  }
  // A quota may make the whole smaller than what is free.
  mount->used = mount->total > mount->free ? mount->total - mount->free : 0;
  return error;
}

ov_rc add_all_mounts(RecordList<ov_mount>* mounts) {
  RecordList<ov_drive> drives;
  ov_rc error = list_drives(&drives);
  for (const ov_drive* drive = drives.head(); error == 0 && drive != nullptr; drive = drive->next) {
    error = add_mount(mounts, drive->path);
  }
  return error;
}

}  // namespace

ov_rc ov_platform_drives(ov_drive** list) {
  if (list == nullptr) return OV_EINVAL;
  *list = nullptr;
  RecordList<ov_drive> drives;
  const ov_rc error = list_drives(&drives);
  if (error == 0) *list = drives.release();
  return error;
}

void ov_platform_free_drives(ov_drive** list) {
  if (list != nullptr) free_records(list);
}

ov_rc ov_platform_mnt(ov_mount** list, const char* path) {
  if (list == nullptr) return OV_EINVAL;
  *list = nullptr;
  RecordList<ov_mount> mounts;
  const ov_rc error = path != nullptr ? add_mount(&mounts, path) : add_all_mounts(&mounts);
  if (error == 0) *list = mounts.release();
  return error;
}

void ov_platform_free_mnt(ov_mount** list) {
  if (list != nullptr) free_records(list);
}
