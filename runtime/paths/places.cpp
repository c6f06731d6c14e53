// Places: the product's directories, the home directory, files looked up in several directories.
#include "runtime/paths/internal.h"

#include <cstring>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"

namespace {

// Looks for `name` in dir/relative for each of the relative directories, in order; writes the path
// of the first that exists. Its length or -1.
int32_t find_below(const char* dir, const char* const* relatives, size_t count, const char* name,
                   char* out, size_t size) {
  for (size_t i = 0; i < count; ++i) {
    char place[OV_PATH_SIZE + 8];  // the usual size and the longest of the relatives
    if (ov_path_append(dir, relatives[i], place, sizeof place) != 0) continue;
    // One that has no room may be followed by a shorter one. ov_path_append reports a text that
    // does not fit as success.
    if (strlen(place) + 1 + strlen(name) + 1 > size) continue;
    if (ov_path_append(place, name, out, size) != 0) continue;
    if (ov_path_exists(out) != 0) return static_cast<int32_t>(strlen(out));
  }
  return ov::no_path(out, size);
}

constexpr char kConfiguration[] = "orvane.conf";

// Adds "/etc" or the like behind the directory that is there; behind a root's own slash only the
// name, since a long path may have no doubled one. Asks for the room of both in any case. The new
// length or -1.
int32_t add_below(const char* slashAndName, int32_t length, char* out, size_t size) {
  if (length < 0) return ov::no_path(out, size);
  const auto end = static_cast<size_t>(length);
  if (size - end <= strlen(slashAndName)) return ov::no_path(out, size);
  const bool slashed = end > 0 && out[end - 1] == '/';
  ov_str_ncat(out, slashAndName + (slashed ? 1 : 0), size);
  return static_cast<int32_t>(strlen(out));
}

// Writes "dir/name". False when it does not fit.
bool compose(const char* dir, size_t dirLength, const char* name, char* out, size_t size) {
  if (dirLength + 1 + strlen(name) + 1 > size) return false;
  memcpy(out, dir, dirLength);
  out[dirLength] = '/';
  return ov_str_ncpy(out + dirLength + 1, name, size - dirLength - 1) == 0;
}

}  // namespace

int32_t ov_path_exists(const char* path) {
  ov_stat record;
  return ov_file_stat(path, &record, 0) == 0 ? 1 : 0;
}

int32_t ov_path_is_dir(const char* path) {
  ov_stat record;
  const bool found = ov_file_stat(path, &record, 0) == 0;
  return found && record.type == OV_TYPE_DIRECTORY ? 1 : 0;
}

const char* ov_path_product_info_file_name(void) {
  return "product-info.mf";
}

int32_t ov_path_root_dir(const char* path, char* out, size_t size) {
  char parent[OV_PATH_SIZE];
  if (out == nullptr) return -1;
  if (ov_path_parent_dir(path, parent, sizeof parent) < 0) return ov::no_path(out, size);
  constexpr const char* kPlaces[] = {".", "..", "../.."};
  char found[OV_PATH_SIZE];
  const char* const name = ov_path_product_info_file_name();
  if (find_below(parent, kPlaces, 3, name, found, sizeof found) >= 0) {
    return ov_path_parent_dir(found, out, size);
  }
  return ov_path_parent_dir(parent, out, size);
}

int32_t ov_path_find_file_in_paths(const char* name, const char* const* dirs, char* out,
                                   size_t size) {
  if (name == nullptr || name[0] == '\0' || dirs == nullptr || out == nullptr) return -1;
  for (; *dirs != nullptr; ++dirs) {
    if (!compose(*dirs, strlen(*dirs), name, out, size)) return -1;
    if (ov_path_exists(out) != 0) return 0;
  }
  return -1;
}

int32_t ov_path_find_file_in_string_of_paths(const char* name, const char* text, char* out,
                                             size_t size) {
  if (name == nullptr || name[0] == '\0' || text == nullptr || text[0] == '\0') return -1;
  if (out == nullptr) return -1;
  for (;;) {
    const size_t length = strcspn(text, ":");
    if (!compose(text, length, name, out, size)) return -1;
    if (ov_path_exists(out) != 0) return 0;
    if (text[length] == '\0') return -1;
    text += length + 1;
  }
}

int32_t ov_path_etc_file(const char* name, const char* path, char* out, size_t size) {
  char parent[OV_PATH_SIZE];
  if (name == nullptr || out == nullptr) return ov::no_path(out, size);
  if (ov_path_parent_dir(path, parent, sizeof parent) < 0) return ov::no_path(out, size);
  constexpr const char* kPlaces[] = {".", "etc", "..", "../etc", "../..", "../../etc"};
  return find_below(parent, kPlaces, 6, name, out, size);
}

int32_t ov_path_etc_dir(const char* path, char* out, size_t size) {
  char found[OV_PATH_SIZE];
  if (ov_path_etc_file(kConfiguration, path, found, sizeof found) >= 0) {
    return ov_path_parent_dir(found, out, size);
  }
  return add_below("/etc", ov_path_root_dir(path, out, size), out, size);
}

int32_t ov_path_lib_dir(const char* path, char* out, size_t size) {
  char found[OV_PATH_SIZE];
  int32_t length = ov_path_etc_file(kConfiguration, path, found, sizeof found);
  if (length >= 0) {
    length = ov_path_parent_dir(found, out, size);
    if (length >= 0) length = ov_path_parent_dir(out, out, size);
  } else {
    length = ov_path_root_dir(path, out, size);
  }
  return add_below("/lib", length, out, size);
}

int32_t ov_path_home_dir(char* out, size_t size) {
  if (out == nullptr) return -1;
  char text[OV_PATH_SIZE];
  if (ov_process_getenv("USERPROFILE", text, sizeof text) != 0) return ov::no_path(out, size);
  return ov::length_or_failure(ov_path_canonical_path(text, out, size), out);
}

int32_t ov_path_executable_path_from_arg(void) {
  return -1;
}

int32_t ov_path_executable_dir(char* out, size_t size) {
  return ov_path_executable_path(out, size) < 0 ? -1 : ov_path_parent_dir(out, out, size);
}
