#include "tests/faces/netscape_bridge_win.h"

#include <algorithm>
#include <utility>

#include "tests/container/script_engine_win.h"

namespace Vantrel::Web::Faces {

using Container::argumentsOf;
using Container::newText;
using Container::Variant;
using Container::Variants;
using Host::Value;

namespace {

// What browsers say when a call of a plug-in's method ends with a no.
constexpr wchar_t kRefusal[] = L"Error calling method on NPObject!";

}  // namespace

Host::Kept NetscapeBridge::held() const {
  Host::Kept kept;
  for (const auto& [dispatch, entry] : functions_) {
    NPObject* const object = entry.reference.get();
    kept.objects.emplace_back(object, host_.objects.pluginReferences(object));
  }
  return kept;
}

STDMETHODIMP NetscapeBridge::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP NetscapeBridge::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP NetscapeBridge::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
  const std::string name = Variant::wideText(names[0]).asText();
  *ids = DISPID_UNKNOWN;
  if (!instance_.hasMethod(name) && !instance_.hasProperty(name)) return DISP_E_UNKNOWNNAME;
  auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) found = names_.insert(names_.end(), name);
  *ids = static_cast<DISPID>(found - names_.begin()) + 1;
  return S_OK;
}

STDMETHODIMP NetscapeBridge::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                    VARIANT* result, EXCEPINFO* exception, UINT*) {
  note("Invoke");
  if (id < 1 || static_cast<size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
  const std::string name = names_[static_cast<size_t>(id) - 1];
  std::vector<Value> values;
  for (const Variant& argument : argumentsOf(*parameters)) values.push_back(valueOf(argument));
  Host::CallResult call;
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
    call.accepted = instance_.set(name, values.at(0));
  } else if (instance_.hasMethod(name)) {
    call = instance_.call(name, values);
  } else {
    call = instance_.get(name);
  }
  if (!call.accepted) {
    if (exception != nullptr) {
      *exception = {};
      exception->bstrDescription = newText(kRefusal);
      exception->scode = E_FAIL;
    }
    return DISP_E_EXCEPTION;
  }
  if (result != nullptr) *result = variantOf(call.value).take();
  return S_OK;
}

Value NetscapeBridge::valueOf(const Variant& variant) {
  switch (variant.type()) {
    case VT_NULL:
      return Value::null();
    case VT_BOOL:
      return Value::boolean(variant.get().boolVal != VARIANT_FALSE);
    case VT_I4:
      return Value::number(static_cast<int32_t>(variant.get().lVal));
    case VT_R8:
      return Value::number(variant.get().dblVal);
    case VT_BSTR:
      return Value::string(variant.asText());
    case VT_DISPATCH:
      return variant.asDispatch() == nullptr ? Value::null() : Value::of(objectOf(variant));
    default:
      return Value::undefined();
  }
}

Variant NetscapeBridge::variantOf(const Value& value) const {
  switch (value.type) {
    case NPVariantType_Null:
      return Variant::null();
    case NPVariantType_Bool:
      return Variant::boolean(value.truth);
    case NPVariantType_Int32:
      return Variant::integer(value.integer);
    case NPVariantType_Double:
      return Variant::real(value.real);
    case NPVariantType_String:
      return Variant::text(value.text);
    case NPVariantType_Object:
      for (const auto& [dispatch, entry] : functions_) {
        if (entry.reference.get() == value.object) return Variant::of(dispatch);
      }
      return {};
    default:
      return {};
  }
}

NPObject* NetscapeBridge::objectOf(const Variant& function) {
  const auto known = functions_.find(function.asDispatch());
  if (known != functions_.end()) return known->second.reference.get();
  Host::PageReference reference = host_.page.makeFunction("a function of the page");
  reference->methods = {"onDrop"};
  const Variant kept = function;
  reference->onCall = [this, kept](const Host::PageCall& call) {
    Variants arguments;
    for (const Value& argument : call.arguments) arguments.push_back(variantOf(argument));
    if (call.method.empty())
      Container::callFunction(kept.asDispatch(), arguments);
    else
      Container::callMethod(kept.asDispatch(), call.method, arguments);
  };
  const auto made =
      functions_.emplace(function.asDispatch(), PageFunction{function, std::move(reference)});
  return made.first->second.reference.get();
}

}  // namespace Vantrel::Web::Faces
