// The program's locale.
#include <clocale>
#include <cwchar>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "runtime/platform/identity_platform.h"

ov_rc ov::locale_name(char* out, size_t size) {
  const wchar_t* const name = _wsetlocale(LC_ALL, nullptr);
  return name == nullptr ? OV_ELOCALE : ov_wchar_to_utf8(name, out, &size);
}
