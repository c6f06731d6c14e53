// User names in their normal form.
#include <atomic>
#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_platform.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/internal.h"
#include "runtime/platform/identity.h"
#include "runtime/strings/ascii.h"

using namespace ov;

namespace {

constexpr int32_t kLevels = 4;

std::atomic<int32_t> normalize_level{OV_NORMALIZE_CACHED};

struct UserName {
  char user[kNameSize];
  char domain[kNameSize];
};

ov_rc split(const char* name, UserName* parts) {
  parts->domain[0] = '\0';
  const char* separator = strchr(name, '@');
  const bool userFirst = separator != nullptr;
  if (separator == nullptr) separator = strchr(name, '\\');
  if (separator == nullptr) separator = strchr(name, '/');
  if (separator == nullptr) return ov_str_ncpy(parts->user, name, sizeof parts->user);
  const auto length = static_cast<size_t>(separator - name);
  char* const first = userFirst ? parts->user : parts->domain;
  char* const second = userFirst ? parts->domain : parts->user;
  const ov_rc error = ov_str_nto(first, name, length, kNameSize, nullptr);
  return error != 0 ? error : ov_str_ncpy(second, separator + 1, kNameSize);
}

bool is_this_computer(const char* domain) {
  if (strcmp(domain, ".") == 0) return true;
  char host[kHostNameSize];
  return ov_platform_hostname(host, sizeof host) == 0 && equal_but_for_case(domain, host);
}

// Replaces a domain by its short name, if the level asks for that and the platform knows it.
void look_up(char (&domain)[kNameSize], int32_t level) {
  char found[kNameSize];
  ov_rc error = 0;
  if (level == OV_NORMALIZE_LOOKUP) {
    error = flat_domain_name(domain, found, sizeof found);
  } else if (level == OV_NORMALIZE_CACHED) {
    error = remembered_domain_name(domain, found, sizeof found);
  } else {
    return;
  }
  if (error != 0) {
    ov_err("Unable to locate domain %s.  Leaving name as is.", domain);
  } else {
    memcpy(domain, found, sizeof found);
  }
}

}  // namespace

ov_rc ov_platform_normalize_set_level(int32_t level) {
  if (level >= kLevels) return OV_EINVAL;
  normalize_level = level;
  return 0;
}

ov_rc ov_platform_normalize_user_name(char* name, size_t size) {
  return ov_platform_normalize_user_name_ex(name, size, normalize_level);
}

ov_rc ov_platform_normalize_user_name_ex(char* name, size_t size, int32_t level) {
  if (level == OV_NORMALIZE_NONE) return 0;
  if (name == nullptr || ov_str_nlen(name, size) == size) return OV_EINVAL;
  UserName parts;
  const ov_rc error = split(name, &parts);
  if (error != 0) return error;
  for (char* c = parts.user; *c != '\0'; ++c) *c = ascii_lower(*c);
  if (parts.domain[0] == '\0' || is_this_computer(parts.domain)) {
    return ov_str_ncpy(name, parts.user, size);
  }
  look_up(parts.domain, level);
  for (char* c = parts.domain; *c != '\0'; ++c) *c = ascii_upper(*c);
  if (strlen(parts.domain) + 1 + strlen(parts.user) >= size) return OV_EBUFFER;
  return ov_str_printf_to(name, size, nullptr, "%s\\%s", parts.domain, parts.user);
}
