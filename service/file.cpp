#include "service/file.h"

#include <algorithm>
#include <utility>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {

constexpr uint32_t kFirstPiece = 4096;
constexpr uint32_t kLargestPiece = 1U << 20;

}  // namespace

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

// Reads in pieces that grow: to ask for the size first costs more than to read a small file. There
// is no limit: the files are the user's, written by the client, and what memory cannot hold is an
// exception that the callers log.
std::string File::read() {
  if (!ov_file_valid(&handle_)) return {};
  std::string text;
  size_t length = 0;
  for (uint32_t piece = kFirstPiece;; piece = std::min(piece * 2, kLargestPiece)) {
    text.resize(length + piece);
    uint32_t count = 0;
    const ov_rc code = ov_file_read(&handle_, text.data() + length, piece, &count);
    length += count;
    // A file gives less than asked for at its end only.
    if (code != 0 || count < piece) break;
  }
  close();
  text.resize(length);
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
