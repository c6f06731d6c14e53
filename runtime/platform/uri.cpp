#include "runtime/ov_uri.h"

#include <cstring>

#include "runtime/strings/ascii.h"

namespace {

bool is_scheme_character(char c) {
  return ov::is_letter(c) || ov::is_digit(c) || c == '+' || c == '.' || c == '-';
}

}  // namespace

int32_t ov_uri_valid_scheme(const char* text, size_t length) {
  if (text == nullptr || length == 0 || !ov::is_letter(text[0])) return 0;
  for (size_t i = 1; i < length; ++i) {
    if (!is_scheme_character(text[i])) return 0;
  }
  return 1;
}

int32_t ov_uri_valid_scheme_term(const char* text) {
  return text == nullptr ? 0 : ov_uri_valid_scheme(text, strlen(text));
}

int32_t ov_uri_valid_uri(const char* text) {
  if (text == nullptr) return 0;
  const char* slash = strchr(text, '/');
  // The third character is the first place for the colon, so that a drive is no scheme.
  if (slash == nullptr || slash - text < 3 || slash[-1] != ':') return 0;
  if (slash[1] != '/' || slash[2] == '\0') return 0;
  return ov_uri_valid_scheme(text, static_cast<size_t>(slash - text) - 1);
}
