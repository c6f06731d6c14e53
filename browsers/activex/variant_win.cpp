#include "browsers/activex/variant_win.h"

#include <climits>
#include <exception>
#include <new>

#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {

namespace {

// Bytes that are ill-formed in `codePage` become its mark for them.
Bstr convert(std::string_view bytes, UINT codePage) {
  // The platform's own lengths are ints, and a text's bytes are counted in 32 bits.
  if (bytes.size() > INT_MAX / sizeof(wchar_t)) throw std::bad_alloc();
  const auto length = static_cast<int>(bytes.size());
  const int wide =
      length == 0 ? 0 : MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0);
  Bstr text(SysAllocStringLen(nullptr, static_cast<UINT>(wide)));
  if (!text) throw std::bad_alloc();
  if (wide != 0) MultiByteToWideChar(codePage, 0, bytes.data(), length, text.get(), wide);
  return text;
}

}  // namespace

VARIANT& behindReference(VARIANT& variant) {
  constexpr VARTYPE kReference = VT_BYREF | VT_VARIANT;
  return variant.vt == kReference && variant.pvarVal != nullptr ? *variant.pvarVal : variant;
}

bool isMissing(const VARIANT& variant) {
  return variant.vt == VT_ERROR && variant.scode == DISP_E_PARAMNOTFOUND;
}

std::string textOf(const wchar_t* text) {
  return text != nullptr ? toUtf8(text) : std::string();
}

Bstr bstrOf(const std::string& text) {
  try {
    return bstrOfWide(toWide(text));
  } catch (const std::runtime_error& exception) {
    ov_err("%s", exception.what());
    // What is ill-formed stands in the reason as well.
    return convert(jsonErrorReply(exception.what()), CP_UTF8);
  }
}

Bstr bstrOfBytes(std::string_view bytes) {
  return convert(bytes, CP_ACP);
}

Bstr bstrOfWide(const std::wstring& text) {
  if (text.size() > UINT_MAX / sizeof(wchar_t)) throw std::bad_alloc();
  Bstr copy(SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size())));
  if (!copy) throw std::bad_alloc();
  return copy;
}

}  // namespace Vantrel::Web::ActiveX
