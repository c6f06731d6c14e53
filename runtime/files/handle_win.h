// An open file of the platform, closed with its owner.
#pragma once

#include <windows.h>

namespace ov {

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  ~FileHandle() {
    if (*this) CloseHandle(handle_);
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  const HANDLE handle_;
};

}  // namespace ov
