#include "tests/container/variant_win.h"

#include <algorithm>
#include <sstream>

namespace Vantrel::Web::Container {

Variant::Variant(const VARIANT& value) {
  VariantInit(&value_);
  // The call only reads, though its declaration does not say so everywhere.
  VariantCopyInd(&value_, const_cast<VARIANT*>(&value));
}

Variant Variant::text(const std::string& utf8) {
  return wideText(wideOf(utf8));
}

Variant Variant::wideText(const std::wstring& text) {
  Variant variant;
  variant.value_.vt = VT_BSTR;
  variant.value_.bstrVal = newText(text);
  return variant;
}

Variant Variant::nullText() {
  Variant variant;
  variant.value_.vt = VT_BSTR;
  return variant;
}

Variant Variant::boolean(bool value) {
  Variant variant;
  variant.value_.vt = VT_BOOL;
  variant.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}

Variant Variant::integer(int32_t value) {
  Variant variant;
  variant.value_.vt = VT_I4;
  variant.value_.lVal = value;
  return variant;
}

Variant Variant::real(double value) {
  Variant variant;
  variant.value_.vt = VT_R8;
  variant.value_.dblVal = value;
  return variant;
}

Variant Variant::null() {
  Variant variant;
  variant.value_.vt = VT_NULL;
  return variant;
}

Variant Variant::missing() {
  Variant variant;
  variant.value_.vt = VT_ERROR;
  variant.value_.scode = DISP_E_PARAMNOTFOUND;
  return variant;
}

Variant Variant::of(IDispatch* object) {
  Variant variant;
  variant.value_.vt = VT_DISPATCH;
  variant.value_.pdispVal = object;
  if (object != nullptr) object->AddRef();
  return variant;
}

Variant Variant::ofUnknown(IUnknown* object) {
  Variant variant;
  variant.value_.vt = VT_UNKNOWN;
  variant.value_.punkVal = object;
  if (object != nullptr) object->AddRef();
  return variant;
}

std::string Variant::asText() const {
  return isText() ? utf8Of(value_.bstrVal) : std::string();
}

IDispatch* Variant::asDispatch() const {
  return value_.vt == VT_DISPATCH ? value_.pdispVal : nullptr;
}

std::string Variant::describe() const {
  std::ostringstream words;
  switch (value_.vt) {
    case VT_EMPTY:
      return "empty";
    case VT_NULL:
      return "null";
    case VT_BSTR:
      return value_.bstrVal == nullptr ? "null text" : "text \"" + asText() + "\"";
    case VT_BOOL:
      return value_.boolVal == VARIANT_FALSE ? "false" : "true";
    case VT_I4:
      words << "I4 " << value_.lVal;
      break;
    case VT_R8:
      words << "R8 " << value_.dblVal;
      break;
    case VT_DISPATCH:
      return value_.pdispVal == nullptr ? "no object" : "an object";
    default:
      words << "type " << value_.vt;
      break;
  }
  return words.str();
}

BSTR newText(const std::wstring& text) {
  return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

std::string utf8Of(BSTR text) {
  const int length = static_cast<int>(SysStringLen(text));
  if (length == 0) return {};
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), bytes, nullptr, nullptr);
  return utf8;
}

std::wstring wideOf(const std::string& utf8) {
  const int bytes = static_cast<int>(utf8.size());
  if (bytes == 0) return {};
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
  std::wstring wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), length);
  return wide;
}

Variants argumentsOf(const DISPPARAMS& parameters) {
  Variants arguments;
  for (UINT i = parameters.cArgs; i > 0; --i) arguments.emplace_back(parameters.rgvarg[i - 1]);
  return arguments;
}

}  // namespace Vantrel::Web::Container
