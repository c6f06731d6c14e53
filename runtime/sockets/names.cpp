#include "runtime/sockets/names.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace ov {

namespace {

// Results of a look-up that say enough by themselves.
constexpr int32_t kPlainResults[] = {8, 10022, 10044, 10047, 10109, 11001, 11002, 11003};

const char* split_at(const char* host_begin, const char* host_end, const char* port,
                     char (&host)[kHostSize]) {
  const auto length = static_cast<size_t>(host_end - host_begin);
  if (length >= kHostSize) return nullptr;
  memcpy(host, host_begin, length);
  host[length] = '\0';
  return port;
}

}  // namespace

const char* split_port(const char* text, char (&host)[kHostSize]) {
  const char* const bracket = strchr(text, '[');
  const char* const end = bracket == nullptr ? nullptr : strstr(bracket, "]:");
  if (end != nullptr) return split_at(bracket + 1, end, end + 2, host);
  if (ov_str_cntchr(text, ':') != 1) return nullptr;
  const char* const colon = strchr(text, ':');
  return split_at(text, colon, colon + 1, host);
}

ov_rc lookup_code(int32_t result, int32_t last_error) {
  for (const int32_t plain : kPlainResults) {
    if (result == plain) return result;
  }
  return last_error != 0 ? last_error : OV_EINTERNAL1;
}

}  // namespace ov
