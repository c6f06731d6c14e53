#include "dialogs/dialog_com_win.h"

#include <charconv>

#include "runtime/ov_log.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

// A thread that runs in another apartment already answers RPC_E_CHANGED_MODE; the dialogs work
// there as well.
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
