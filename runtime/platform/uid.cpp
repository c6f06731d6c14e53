// The number of the user.
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_platform.h"
#include "runtime/platform/passwd_file.h"

namespace {

constexpr char kPasswdFile[] = "etc/passwd";

ov_rc look_up(const char* user, int32_t* uid) {
  char root[OV_PATH_SIZE];
  ov_rc error = ov_platform_root(root, sizeof root);
  if (error != 0) return error;
  char path[OV_PATH_SIZE];
  error = ov_file_append_path(root, kPasswdFile, path, sizeof path);
  return error != 0 ? error : ov::find_uid(path, user, uid);
}

}  // namespace

ov_rc ov_platform_uid(int32_t* uid) {
  if (uid == nullptr) return OV_EINVAL;
  *uid = -1;
  char user[OV_PATH_SIZE];
  ov_rc error = ov_platform_usr(user, sizeof user);
  if (error == 0) error = look_up(user, uid);
  if (error != 0) ov_log("Could not find uid for user [%s]", user);
  return error;
}
