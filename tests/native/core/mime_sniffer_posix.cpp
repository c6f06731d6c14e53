// A sniffer for native test builds, which tells as much as the tests of what is built on it need.

#include "core/mime_sniffer.h"

namespace Vantrel::Web {

std::string sniffMimeType(std::string_view content) {
  if (content.substr(0, 4) == "\x89PNG") return "image/x-png";
  return content.find('\0') == std::string_view::npos ? "text/plain" : "application/octet-stream";
}

}  // namespace Vantrel::Web
