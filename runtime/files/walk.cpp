// The walk through a directory and all below it.
#include <memory>
#include <new>
#include <utility>

#include "runtime/files/dir_reader.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_strings.h"

namespace {

// One directory that is being read, or a file that the walk started at.
struct Frame {
  char path[OV_PATH_SIZE];
  bool file = false;
  ov::DirReader dir;
  std::unique_ptr<Frame> above;
};

int32_t kind_of(const ov_stat& record) {
  if (record.type == OV_TYPE_DIRECTORY) return OV_WALK_DIRECTORY;
  return record.type == OV_TYPE_REGULAR ? OV_WALK_FILE : OV_WALK_OTHER;
}

}  // namespace

struct ov_dir_walk {
  std::unique_ptr<Frame> top;

  ~ov_dir_walk() {
    while (pop()) {
    }
  }

  bool pop() {
    if (top == nullptr) return false;
    top = std::move(top->above);
    return true;
  }

  ov_rc push(const char* path, bool file) {
    std::unique_ptr<Frame> frame(new (std::nothrow) Frame);
    if (frame == nullptr) return OV_ENOMEM;
    ov_rc error = ov_str_ncpy(frame->path, path, sizeof frame->path);
    if (error != 0) return error;
    frame->file = file;
    if (!file) error = frame->dir.open(path);
    if (error != 0) return error;
    frame->above = std::move(top);
    top = std::move(frame);
    return 0;
  }

  // The next entry of the directory on top, joined to its path.
  ov_rc next(char* out, size_t size) {
    ov_dirent entry;
    const ov_rc error = top->dir.next(&entry);
    return error != 0 ? error : ov::entry_path(top->path, entry.name, out, size);
  }
};

ov_rc ov_dir_walk_init(ov_dir_walk** walk, const char* path) {
  if (walk == nullptr) return OV_EINVAL;
  *walk = nullptr;
  if (path == nullptr) return OV_EINVAL;
  ov_stat record;
  ov_rc error = ov_file_stat(path, &record, 0);
  if (error != 0) return error;
  if (kind_of(record) == OV_WALK_OTHER) return OV_ENOTDIR;
  std::unique_ptr<ov_dir_walk> made(new (std::nothrow) ov_dir_walk);
  if (made == nullptr) return OV_ENOMEM;
  error = made->push(path, kind_of(record) == OV_WALK_FILE);
  if (error == 0) *walk = made.release();
  return error;
}

ov_rc ov_dir_walk_iterate(ov_dir_walk* walk, char* out, size_t size, int32_t* type) {
  if (walk == nullptr || out == nullptr || type == nullptr) return OV_EINVAL;
  if (walk->top == nullptr) return OV_EDIREND;
  if (walk->top->file) {
    *type = OV_WALK_FILE;
    const ov_rc copied = ov_str_ncpy(out, walk->top->path, size);
    walk->pop();
    return copied;
  }
  ov_rc error = walk->next(out, size);
  if (error == OV_EDIREND) {
    walk->pop();
    *type = OV_WALK_UP;
    return ov_str_ncpy(out, "..", size);
  }
  if (error != 0) return error;
  ov_stat record;
  error = ov_file_stat(out, &record, 0);
  if (error != 0) return error;
  *type = kind_of(record);
  return *type == OV_WALK_DIRECTORY ? walk->push(out, false) : 0;
}

ov_rc ov_dir_walk_pop(ov_dir_walk* walk) {
  if (walk == nullptr) return OV_EINVAL;
  return walk->pop() ? 0 : OV_EDIREND;
}

void ov_dir_walk_release(ov_dir_walk** walk) {
  if (walk == nullptr) return;
  delete *walk;
  *walk = nullptr;
}
