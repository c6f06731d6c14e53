#include "browsers/activex/dispatch_part_win.h"

#include <exception>
#include <string>

#include "browsers/activex/identifiers.h"
#include "browsers/activex/orvane_web_ctrl_win.h"
#include "browsers/activex/type_library_win.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The number that a script error of ours carries.
constexpr WORD kScriptErrorCode = 16;
constexpr wchar_t kScriptErrorSource[] = L"Orvane Web";

HRESULT scriptError(const std::string& text, EXCEPINFO* exception) {
  if (exception != nullptr) {
    Bstr source = bstrOfWide(kScriptErrorSource);
    Bstr description = bstrOf(text);
    *exception = {};
    exception->wCode = kScriptErrorCode;
    exception->bstrSource = source.release();
    exception->bstrDescription = description.release();
  }
  return DISP_E_EXCEPTION;
}

void giveText(MethodResult kind, const MethodText& text, VARIANT* result) {
  if (result == nullptr || kind == MethodResult::kNothing) return;
  Bstr bstr;
  if (text) bstr = kind == MethodResult::kBytes ? bstrOfBytes(*text) : bstrOf(*text);
  result->vt = VT_BSTR;
  result->bstrVal = bstr.release();
}

std::string described(const std::exception& exception, const char* failure) {
  return failure != nullptr ? std::string(failure) + ": " + exception.what() : exception.what();
}

std::string replyTo(const std::exception& exception, const char* failure) {
  return failure != nullptr ? exceptionJsonErrorReply(exception, failure)
                            : exceptionJsonErrorReply(exception);
}

// Whether the property is to be set; then the one argument is the value.
bool isPut(WORD flags, WORD puts) {
  return (flags & puts) != 0;
}

bool isGet(WORD flags) {
  return (flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) != 0;
}

HRESULT checkPut(const DISPPARAMS& params) {
  if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
  const bool named = params.cNamedArgs == 1 && params.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  return params.cNamedArgs == 0 || named ? S_OK : DISP_E_PARAMNOTFOUND;
}

// "COrvaneWebCtrl::StartDownload()".
void logMember(const wchar_t* name) {
  const std::string text = textOf(name);
  OV_DEBUG("COrvaneWebCtrl::%c%s()", text.front() - 'a' + 'A', text.c_str() + 1);
}

DISPID memberOf(const wchar_t* name) {
  if (isSameName(name, kNameProperty)) return kNameId;
  if (isSameName(name, kEventHandlerProperty)) return kEventHandlerId;
  const DispatchMethod* const method = findDispatchMethod(name);
  return method != nullptr ? method->id : DISPID_UNKNOWN;
}

// Parameters are known by their numbers in the method.
DISPID parameterOf(const DispatchMethod* method, const wchar_t* name) {
  if (method == nullptr) return DISPID_UNKNOWN;
  for (size_t i = 0; i < method->count; ++i) {
    if (isSameName(method->parameters[i].name, name)) return static_cast<DISPID>(i);
  }
  return DISPID_UNKNOWN;
}

}  // namespace

DispatchPart::DispatchPart(COrvaneWebCtrl& control) : Part(control), webControl_(control) {}

HRESULT STDMETHODCALLTYPE DispatchPart::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE DispatchPart::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return guarded<HRESULT>(E_OUTOFMEMORY,
                          [info] { return loadTypeInfo(kDispatchInterfaceId, info); });
}

HRESULT STDMETHODCALLTYPE DispatchPart::GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID,
                                                      DISPID* ids) {
  if (id != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (count == 0) return S_OK;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  HRESULT result = S_OK;
  ids[0] = memberOf(names[0]);
  if (ids[0] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  const DispatchMethod* const method = findDispatchMethod(ids[0]);
  for (UINT i = 1; i < count; ++i) {
    ids[i] = parameterOf(method, names[i]);
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

HRESULT STDMETHODCALLTYPE DispatchPart::Invoke(DISPID member, REFIID id, LCID locale, WORD flags,
                                               DISPPARAMS* params, VARIANT* result,
                                               EXCEPINFO* exception, UINT* wrong) {
  if (id != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (params == nullptr || (params->cArgs != 0 && params->rgvarg == nullptr) ||
      (params->cNamedArgs != 0 && params->rgdispidNamedArgs == nullptr)) {
    return E_INVALIDARG;
  }
  if (result != nullptr) VariantInit(result);
  const Call call = {locale, flags, *params, result, exception, wrong};
  return entered(E_OUTOFMEMORY, [&] { return callMember(member, call); });
}

HRESULT DispatchPart::callMember(DISPID member, const Call& call) {
  if (member == kNameId) return useName(call);
  if (member == kEventHandlerId) return useEventHandler(call);
  const DispatchMethod* const method = findDispatchMethod(member);
  if (method == nullptr || (call.flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  return callMethod(*method, call);
}

HRESULT DispatchPart::callMethod(const DispatchMethod& method, const Call& call) {
  DispatchArguments args;
  const HRESULT taken = args.take(call.params, method.wanted(), call.locale, call.wrong);
  if (FAILED(taken)) return taken;
  webControl_.startIfNeeded();
  logMember(method.name);
  return runMethod(method, args, call);
}

// The one place where what a member throws ends.
HRESULT DispatchPart::runMethod(const DispatchMethod& method, const DispatchArguments& args,
                                const Call& call) {
  MethodText text;
  try {
    text = (webControl_.*method.function)(args);
  } catch (const ContactRefused&) {
    return scriptError(kErrorContacting, call.exception);
  } catch (const std::exception& exception) {
    switch (method.onException) {
      case OnException::kReply:
        text = replyTo(exception, method.failure);
        break;
      case OnException::kScriptError: {
        const std::string words = described(exception, method.failure);
        ov_err("%s", words.c_str());
        return scriptError(words, call.exception);
      }
      case OnException::kNullText:
        ov_err("%s", described(exception, method.failure).c_str());
        break;
      case OnException::kSilence:
        break;
    }
  }
  giveText(method.result, text, call.result);
  return S_OK;
}

HRESULT DispatchPart::useName(const Call& call) {
  if (isPut(call.flags, DISPATCH_PROPERTYPUT)) {
    const HRESULT checked = checkPut(call.params);
    if (FAILED(checked)) return checked;
    if (call.wrong != nullptr) *call.wrong = 0;
    Variant value;
    const HRESULT changed = changeInto(ParameterKind::kText, behindReference(call.params.rgvarg[0]),
                                       call.locale, value.get());
    if (FAILED(changed)) return changed;
    OV_DEBUG("COrvaneWebCtrl::SetName()");
    webControl_.setName(value.value().bstrVal);
    return S_OK;
  }
  if (!isGet(call.flags)) return DISP_E_MEMBERNOTFOUND;
  if (call.params.cArgs != 0) return DISP_E_BADPARAMCOUNT;
  OV_DEBUG("COrvaneWebCtrl::GetName()");
  giveText(MethodResult::kText, webControl_.getName(), call.result);
  return S_OK;
}

HRESULT DispatchPart::useEventHandler(const Call& call) {
  if (isPut(call.flags, DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    const HRESULT checked = checkPut(call.params);
    if (FAILED(checked)) return checked;
    if (call.wrong != nullptr) *call.wrong = 0;
    VARIANT& given = behindReference(call.params.rgvarg[0]);
    Variant value;
    // What a script calls null or undefined takes the handler away.
    if (given.vt != VT_NULL && given.vt != VT_EMPTY) {
      const HRESULT changed = changeInto(ParameterKind::kObject, given, call.locale, value.get());
      if (FAILED(changed)) return changed;
    }
    webControl_.setEventHandler(value.type() == VT_DISPATCH ? value.value().pdispVal : nullptr);
    return S_OK;
  }
  if (!isGet(call.flags)) return DISP_E_MEMBERNOTFOUND;
  if (call.params.cArgs != 0) return DISP_E_BADPARAMCOUNT;
  OV_DEBUG("COrvaneWebCtrl::GetEventHandler()");
  if (call.result != nullptr) {
    call.result->vt = VT_DISPATCH;
    call.result->pdispVal = nullptr;
  }
  return S_OK;
}

}  // namespace Vantrel::Web::ActiveX
