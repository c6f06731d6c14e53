#include "runtime/platform/passwd_file.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/strings/ascii.h"
#include "runtime/strings/decimal.h"

using namespace ov;

namespace {

constexpr size_t kLineSize = 1024;  // of a longer line only the start counts
constexpr size_t kChunkSize = 4096;

// A file open for reading, closed at the end.
class Reader {
 public:
  Reader() { ov_file_init(&file_); }
  ~Reader() { ov_file_close(&file_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  ov_rc open(const char* path) { return ov_file_openread(path, &file_); }

  // Reads the next line without its end; false at the end of the file or after a failure, whose
  // code is then in `error`.
  bool line(char (&text)[kLineSize]) {
    size_t length = 0;
    bool any = false;
    for (char c; next(&c); any = true) {
      if (c == '\n') {
        any = true;
        break;
      }
      if (length < kLineSize - 1) text[length++] = c;
    }
    text[length] = '\0';
    return any;
  }
  ov_rc error = 0;

 private:
  bool next(char* c) {
    if (at_ == end_ && error == 0) {
      at_ = 0;
      end_ = 0;
      error = ov_file_read(&file_, chunk_, sizeof chunk_, &end_);
    }
    if (at_ == end_) return false;
    *c = chunk_[at_++];
    return true;
  }

  ov_file file_;
  uint32_t at_ = 0, end_ = 0;
  char chunk_[kChunkSize];
};

// Reads a decimal number that ends at a colon, white space or the text's end.
bool read_number(const char* text, uint32_t* value) {
  const Decimal number = read_decimal(text);
  if (number.digits == 0 || number.value > UINT32_MAX) return false;
  *value = static_cast<uint32_t>(number.value);
  const char end = text[number.digits];
  return end == ':' || end == '\r' || end == '\0';
}

// Whether the line is the user's and tells a number. Cuts the line behind the name.
bool matches(char* line, const char* user, uint32_t* number) {
  char* const colon = strchr(line, ':');
  if (colon == nullptr) return false;
  *colon = '\0';
  OV_DEBUG("user = %s", line);
  if (!equal_but_for_case(line, user)) return false;
  const char* const second = strchr(colon + 1, ':');
  return second != nullptr && read_number(second + 1, number);
}

}  // namespace

ov_rc ov::find_uid(const char* path, const char* user, int32_t* uid) {
  *uid = -1;
  Reader file;
  const ov_rc error = file.open(path);
  if (error != 0) {
    ov_log("Could not open %s errno=%d", path, error);
    return error;
  }
  char line[kLineSize];
  while (file.line(line)) {
    uint32_t number = 0;
    if (!matches(line, user, &number)) continue;
    ov_err("uid for user %s = %u", user, number);
    *uid = static_cast<int32_t>(number);
    return 0;
  }
  if (file.error != 0) return file.error;
  ov_log("Invalid user name, uid not found for user %s", user);
  return OV_EUNAME;
}
