// The user: the name as the environment tells it, the number as the product's file of users does.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/files/handle.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_platform.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/internal.h"
#include "runtime/strings/ascii.h"
#include "runtime/strings/decimal.h"

using namespace ov;

namespace {

// What ov_process_getenv gives for a variable that is not set.
constexpr ov_rc kNotSet = OV_EINVAL;
constexpr size_t kOwnerSize = 1024;

bool is_too_small(ov_rc error) {
  return error == OV_EBUFFER || error == OV_ERANGE;
}

// Appends the domain, if the environment tells one, and brings the name into its normal form.
ov_rc add_domain(char* name, size_t size) {
  char domain[kNameSize];
  if (ov_process_getenv("USERDOMAIN", domain, sizeof domain) != 0 &&
      ov_process_getenv("DOMAINNAME", domain, sizeof domain) != 0) {
    return 0;
  }
  size_t end = strlen(name);
  const ov_rc error = ov_str_printf_to(name, size, &end, "@%s", domain);
  return error != 0 ? error : ov_platform_normalize_user_name_ex(name, size, OV_NORMALIZE_LOCAL);
}

ov_rc read_name(char* out, size_t size) {
  ov_rc error = ov_process_getenv("USER", out, size);
  if (error == 0 || is_too_small(error)) return error;
  error = ov_process_getenv("LOGNAME", out, size);
  if (error != kNotSet) return error;
  error = ov_process_getenv("USERNAME", out, size);
  return error != 0 ? error : add_domain(out, size);
}

bool is_process_owner(const char* name, size_t size) {
  char owner[kOwnerSize];
  return ov_platform_get_process_uname(owner, sizeof owner) == 0 && strncmp(name, owner, size) == 0;
}

constexpr size_t kLineSize = 1024;  // of a longer line only the start counts
constexpr size_t kChunkSize = 4096;

// The lines of a file. A local object of one thread.
class LineReader {
 public:
  ov_rc open(const char* path) { return ov_file_openread(path, file_.record()); }

  // 0, or the code of the read that failed.
  ov_rc error() const { return error_; }

  // Reads the next line without its end; false at the end of the file or after a failure.
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

 private:
  bool next(char* c) {
    if (at_ == end_ && error_ == 0) {
      at_ = 0;
      end_ = 0;
      error_ = ov_file_read(file_.record(), chunk_, sizeof chunk_, &end_);
    }
    if (at_ == end_) return false;
    *c = chunk_[at_++];
    return true;
  }

  FileHandle file_;
  ov_rc error_ = 0;
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
  LineReader file;
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
  if (file.error() != 0) return file.error();
  ov_log("Invalid user name, uid not found for user %s", user);
  return OV_EUNAME;
}

namespace {

// Below the install directory.
constexpr char kPasswdFile[] = "/etc/passwd";

ov_rc look_up(const char* user, int32_t* uid) {
  char root[OV_PATH_SIZE];
  ov_rc error = ov_platform_root(root, sizeof root);
  if (error != 0) return error;
  // The registry's text may end in separators, and a long path may have no doubled one.
  size_t end = strlen(root);
  while (end > 0 && (root[end - 1] == '\\' || root[end - 1] == '/')) --end;
  error = ov_str_printf_to(root, sizeof root, &end, "%s", kPasswdFile);
  return error != 0 ? error : find_uid(root, user, uid);
}

}  // namespace

ov_rc ov_platform_usr(char* out, size_t size) {
  if (out == nullptr || size == 0) return OV_EINVAL;
  out[0] = '\0';
  const ov_rc error = read_name(out, size);
  if (error != 0) {
    out[0] = '\0';
    char text[512];
    ov_err("Failed to resolve user name, errno:%d, err desc:%s", error,
           ov_platform_errstr_inline(error, text, sizeof text));
    return error;
  }
  if (!is_process_owner(out, size)) {
    ov_log("Process owner and %%USER%% name mismatch, using env name");
  }
  return 0;
}

ov_rc ov_platform_uid(int32_t* uid) {
  if (uid == nullptr) return OV_EINVAL;
  *uid = -1;
  char user[OV_PATH_SIZE];
  ov_rc error = ov_platform_usr(user, sizeof user);
  if (error == 0) error = look_up(user, uid);
  if (error != 0) ov_log("Could not find uid for user [%s]", user);
  return error;
}
