#include "dialogs/dialog_com_win.h"

#include <charconv>

#include "runtime/ov_log.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

// A thread of the multithreaded apartment answers RPC_E_CHANGED_MODE, which is logged and changes
// nothing else. Only Wine was seen to show dialogs there. Windows makes the objects of the modern
// ones, which want an apartment of one thread, on another thread than the caller's, so that dialog
// and owner are windows of two threads; and CoUninitialize then takes back a beginning that was the
// caller's own. Browsers and containers call from apartments of one thread.
ComApartment::ComApartment(const char* words) {
  const HRESULT result = CoInitialize(nullptr);
  if (FAILED(result)) ov_err("%s: %x", words, static_cast<unsigned>(result));
}

std::string hexText(HRESULT result) {
  char digits[8];
  const auto written =
      std::to_chars(std::begin(digits), std::end(digits), static_cast<uint32_t>(result), 16);
  return {std::begin(digits), written.ptr};
}

void require(HRESULT result, std::string_view words) {
  if (FAILED(result)) throw SystemException(std::string(words) + hexText(result));
}

}  // namespace Vantrel::Web
