// The caller's error, kept over a piece of work that must not change it: both the system's last
// error and errno. A local object of the thread that does the work.
#pragma once

#include <cerrno>
#include <cstdint>

#include "runtime/errors/platform.h"

namespace ov {

class SavedError {
 public:
  SavedError() : lastError_(last_error()), errno_(errno) {}
  ~SavedError() {
    set_last_error(lastError_);
    errno = errno_;
  }
  SavedError(const SavedError&) = delete;
  SavedError& operator=(const SavedError&) = delete;

 private:
  const uint32_t lastError_;
  const int errno_;
};

}  // namespace ov
