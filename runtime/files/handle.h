// An open file that is closed with its owner: a local object of one thread, or a member of one.
// Not part of the public header.
#pragma once

#include "runtime/ov_files.h"

namespace ov {

class FileHandle {
 public:
  FileHandle() { ov_file_init(&file_); }
  explicit FileHandle(ov_file file) : file_(file) {}
  ~FileHandle() { ov_file_close(&file_); }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;

  explicit operator bool() const { return ov_file_valid(&file_) != 0; }
  // The handle of the platform.
  ov_file get() const { return file_; }
  // For the functions that open, read and write.
  ov_file* record() { return &file_; }

 private:
  ov_file file_;
};

}  // namespace ov
