#include "service/file.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web {

File::File(std::string filePath) : path_(std::move(filePath)) {
  if (const ov_rc code = ov_file_init(&handle_)) {
    noteError(code);
    ov_log("File::File() error: %s", errorText_);
    handle_ = closedHandle();
  }
}

File::~File() {
  close();
}

void File::open() {
  if (const ov_rc code = ov_file_openread(path_.c_str(), &handle_)) {
    noteError(code);
    OV_DEBUG("File::open() failed: %s", errorText_);
    handle_ = closedHandle();
  }
}

// The size has no limit of its own: the files are the user's, written by the client, and a size
// that memory cannot hold is an exception that the callers log.
std::string File::read() {
  if (!ov_file_valid(&handle_)) return {};
  ov_stat record = {};
  std::string text;
  if (ov_file_fstat(&handle_, &record) == 0) {
    text.resize(static_cast<size_t>(record.size));
    const uint64_t wanted = std::min<uint64_t>(record.size, std::numeric_limits<uint32_t>::max());
    uint32_t count = 0;
    ov_file_read(&handle_, text.data(), static_cast<uint32_t>(wanted), &count);
    text.resize(count);
  }
  close();
  return text.substr(0, text.find('\0'));
}

void File::close() {
  if (ov_file_valid(&handle_)) ov_file_close(&handle_);
  handle_ = closedHandle();
}

void File::noteError(ov_rc code) {
  ov_platform_errstr(code, errorText_, sizeof errorText_);
}

}  // namespace Vantrel::Web
