// Keeps the system's boxes away from a thread. Not part of the public header.
#pragma once

#include <windows.h>

namespace ov {

// While it lives this thread fails where the system would show a box and wait for somebody: a drive
// without a disk, a library of another kind. The process's own mode, which children inherit, stays
// as the browser set it. Wine shows no such boxes; there only the mode can be seen.
class QuietDrives {
 public:
  QuietDrives()
      : set_(SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS, &before_) != 0) {}
  ~QuietDrives() {
    if (set_) SetThreadErrorMode(before_, nullptr);
  }
  QuietDrives(const QuietDrives&) = delete;
  QuietDrives& operator=(const QuietDrives&) = delete;

 private:
  DWORD before_ = 0;
  const bool set_;
};

}  // namespace ov
