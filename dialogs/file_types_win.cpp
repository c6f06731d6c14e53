#include "dialogs/file_types.h"

#include <cstdlib>

#include "runtime/ov_log.h"

namespace Vantrel::Web {

namespace {
constexpr char kSeveralFiles[] = "et al";
constexpr size_t kExtensionSize = 256;  // bytes, the terminator among them
}  // namespace

// By the platform's library, which knows drives and both slashes. It reads the text in the system's
// code page: where one of those has a backslash as second byte, a name may be cut there.
std::string suggestedExtension(const std::string& suggestedName) {
  if (suggestedName.empty() || suggestedName.find(kSeveralFiles) != std::string::npos) return {};
  char extension[kExtensionSize] = "";
  if (const int code = _splitpath_s(suggestedName.c_str(), nullptr, 0, nullptr, 0, nullptr, 0,
                                    extension, sizeof extension)) {
    ov_err("_splitpath_s failed: %i", code);
    return {};
  }
  return extension[0] == '\0' ? std::string() : extension + 1;
}

}  // namespace Vantrel::Web
