// The reader of the small files that the desktop client writes. For one use on one thread.
#pragma once

#include <string>

#include "runtime/ov_files.h"

namespace Vantrel::Web {

class File {
 public:
  // `path` is UTF-8.
  explicit File(const std::string& path);
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
  void noteError(ov_rc code);

  std::string path;
  ov_file handle;
  char errorText[4096] = "";  // the platform's text of the last error
};

}  // namespace Vantrel::Web
