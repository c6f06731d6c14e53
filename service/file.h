// The reader of the small files that the desktop client writes. For one use on one thread.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/ov_files.h"

namespace Vantrel::Web {

class File {
 public:
  // `filePath` is UTF-8.
  explicit File(std::string filePath);
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  // Opens for reading. A failure is a debug line, and read() then gives an empty text.
  void open();
  // The whole file up to its first NUL byte; closes the file. Empty if it is not open.
  std::string read();
  // Does nothing on a closed file.
  void close();

 private:
  static ov_file closedHandle() { return reinterpret_cast<ov_file>(~uintptr_t{0}); }
  void noteError(ov_rc code);

  std::string path_;
  ov_file handle_ = closedHandle();
  char errorText_[4096] = "";  // the platform's text of the last error
};

}  // namespace Vantrel::Web
