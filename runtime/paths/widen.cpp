// The form of a path that a wide system call takes.
#include "runtime/paths/internal.h"

#include <cstring>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace {

// The least length in bytes of a path that is rewritten.
constexpr size_t kLongPath = 11;

// Turns slashes into backslashes and drops each run of dots at the end of a name: the long form of
// a path is taken literally by the system, and a name that ends in a dot would be another name.
void rewrite(char* text) {
  size_t end = 0;
  for (const char* read = text; *read != '\0';) {
    const size_t dots = strspn(read, ".");
    const char behind = read[dots];
    if (dots > 0 && (behind == '/' || behind == '\\' || behind == '\0')) {
      read += dots;
      continue;
    }
    if (dots > 0) {
      memmove(text + end, read, dots);
      end += dots;
      read += dots;
      continue;
    }
    text[end++] = *read == '/' ? '\\' : *read;
    ++read;
  }
  text[end] = '\0';
}

}  // namespace

ov_rc ov::widened_text(const char* path, char (&buffer)[kWidenedSize], const char** result) {
  *result = nullptr;
  if (strlen(path) < kLongPath) return 0;
  const bool unc = ov_path_is_unc_path(path) != 0;
  if (!unc && ov_path_is_relative(path) != 0) return 0;
  const char* const prefix = unc ? R"(\\?\UNC\)" : R"(\\?\)";
  const ov_rc error =
      ov_str_printf_to(buffer, sizeof buffer, nullptr, "%s%s", prefix, unc ? path + 2 : path);
  if (error != 0) return error;
  rewrite(buffer);
  *result = buffer;
  return 0;
}

ov_rc ov_path_widen_path(const char* path, wchar_t* wide, size_t* bytes) {
  if (path == nullptr || bytes == nullptr) return OV_EINVAL;
  char buffer[ov::kWidenedSize];
  const char* text = nullptr;
  const ov_rc error = ov::widened_text(path, buffer, &text);
  if (error != 0) return error;
  return ov_utf8_to_wchar(text == nullptr ? path : text, wide, bytes);
}
