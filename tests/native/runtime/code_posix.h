// The code that the base runtime gives for an errno, in the numbers of the shipped platform.
#pragma once

#include <cerrno>

#include "runtime/ov_types.h"

namespace ov {

inline ov_rc code_of_errno() {
  switch (errno) {
    case ENOTDIR:
      return 3;  // the path does not lead there
    case EACCES:
    case EPERM:
      return 5;
    case EBADF:
      return 6;
    case ENOMEM:
      return 8;
    case EXDEV:
      return 17;
    case EPIPE:
      return 109;
    case ENOTEMPTY:
      return 145;
    case EEXIST:
      return 183;
    case ENAMETOOLONG:
      return 206;
    default:
      return errno;
  }
}

inline ov_rc code_of_call(int result) {
  return result == 0 ? 0 : code_of_errno();
}

}  // namespace ov
