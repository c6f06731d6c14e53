#include "browsers/activex/page_calls_win.h"

#include <span>

#include "browsers/activex/variant_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

VARIANT textVariant(const Bstr& text) {
  VARIANT variant = {};
  variant.vt = VT_BSTR;
  variant.bstrVal = text.get();
  return variant;
}

// The last argument stands first. Held for the call's time: the page may let go of its function.
void call(IDispatch* function, std::span<VARIANT> arguments) {
  const ComPointer<IDispatch> held(function);
  DISPPARAMS params = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  held->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
               nullptr, nullptr);
}

}  // namespace

void invokeDispatch(IDispatch* function, const std::string& text) {
  if (function == nullptr) return;
  const Bstr argument = bstrOf(text);
  VARIANT arguments[] = {textVariant(argument)};
  call(function, arguments);
}

void sendDispatchEvent(IDispatch* function, PageEvent event, const std::string& payload) {
  if (function == nullptr) return;
  const Bstr name = bstrOf(pageEventName(event));
  const Bstr argument = bstrOf(payload);
  VARIANT arguments[] = {textVariant(argument), textVariant(name)};
  call(function, arguments);
}

}  // namespace Vantrel::Web::ActiveX
