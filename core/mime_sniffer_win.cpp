#include "core/mime_sniffer.h"

#include <windows.h>
#include <urlmon.h>

#include <memory>

#include "text/wide_text.h"

namespace Vantrel::Web {

namespace {

struct TaskMemoryFree {
  void operator()(wchar_t* text) const { CoTaskMemFree(text); }
};

}  // namespace

// Wine knows the types that are told by a signature and falls back on "text/plain" and
// "application/octet-stream"; Windows looks for more, such as "text/html" and "text/xml".
std::string sniffMimeType(std::string_view content) {
  wchar_t* found = nullptr;
  const HRESULT result =
      FindMimeFromData(nullptr, nullptr, const_cast<char*>(content.data()),
                       static_cast<DWORD>(content.size()), nullptr, 0, &found, 0);
  const std::unique_ptr<wchar_t, TaskMemoryFree> type(found);
  return FAILED(result) || type == nullptr ? std::string() : toUtf8(type.get());
}

}  // namespace Vantrel::Web
