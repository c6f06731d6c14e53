// The user's name as the environment tells it.
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_platform.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/domains.h"

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
