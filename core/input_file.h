// A file opened for reading through the base runtime, closed with its owner. One thread.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/ov_files.h"

namespace Vantrel::Web {

class InputFile {
 public:
  InputFile() { ov_file_init(&file_); }
  ~InputFile() { ov_file_close(&file_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // 0 or the system's code.
  ov_rc open(const std::string& path) { return ov_file_openread(path.c_str(), &file_); }
  // Moves to `offset` bytes from the start; beyond the end is no failure.
  ov_rc seek(uint64_t offset) { return ov_file_seek(&file_, static_cast<int64_t>(offset), 0); }
  // Reads until `length` bytes are there or the file ends; `*count` tells how many there are, also
  // behind a failure.
  ov_rc read(char* buffer, uint32_t length, uint32_t* count) {
    *count = 0;
    while (*count < length) {
      uint32_t part = 0;
      if (const ov_rc code = ov_file_read(&file_, buffer + *count, length - *count, &part)) {
        return code;
      }
      if (part == 0) break;
      *count += part;
    }
    return 0;
  }

 private:
  ov_file file_;
};

}  // namespace Vantrel::Web
