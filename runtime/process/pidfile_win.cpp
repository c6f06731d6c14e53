// Files that hold a process's id.
#include <windows.h>

#include <cstdlib>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"

namespace {

constexpr int32_t kMode = 0744;

ov_rc report(const char* what, const char* path, ov_rc error) {
  char text[512];
  ov_err("%s pid file '%s', errno:%d, err desc:%s", what, path, error,
         ov_platform_errstr_inline(error, text, sizeof text));
  return error;
}

ov_rc write_id(const char* path) {
  char content[32];
  size_t length = 0;
  ov_str_printf_to(content, sizeof content, &length, "%llu\n",
                   static_cast<unsigned long long>(GetCurrentProcessId()));
  ov_file file;
  ov_rc error = ov_file_openwrite(path, &file, kMode);
  if (error != 0) return report("Unable to open", path, error);
  uint32_t written = 0;
  error = ov_file_write(&file, content, static_cast<uint32_t>(length), &written);
  if (error == 0 && written != length) error = OV_EBUFFER;
  if (error != 0) {
    report("Failure writing to", path, error);
  } else {
    error = ov_file_truncate(&file, written);
  }
  ov_file_close(&file);
  return error;
}

}  // namespace

ov_rc ov_process_create_pidfile(const char* directory, const char* name, char** pathOut) {
  if (pathOut == nullptr) return OV_EINVAL;
  *pathOut = nullptr;
  if (directory == nullptr || name == nullptr) return OV_EINVAL;
  char* path = static_cast<char*>(malloc(OV_PATH_SIZE));
  if (path == nullptr) return OV_ENOMEM;
  ov_rc error =
      ov_str_printf_to(path, OV_PATH_SIZE, nullptr, "%s/var/run/orvane/%s.pid", directory, name);
  if (error != 0) {
    free(path);  // a path that was cut is not ours to delete
    return error;
  }
  error = write_id(path);
  if (error != 0) {
    ov_process_destroy_pidfile(&path);
  } else {
    *pathOut = path;
  }
  return error;
}

void ov_process_destroy_pidfile(char** path) {
  if (path == nullptr || *path == nullptr) return;
  const ov_rc error = ov_file_delete(*path);
  if (error != 0) report("Failure deleting", *path, error);
  free(*path);
  *path = nullptr;
}
