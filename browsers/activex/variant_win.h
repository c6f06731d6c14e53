// The platform's variants and texts, owned; and our texts as the platform's. Any thread.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <memory>
#include <string>
#include <string_view>

namespace Vantrel::Web::ActiveX {

// A variant with what it holds, empty from the start.
class Variant {
 public:
  Variant() = default;
  ~Variant() { VariantClear(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  VARIANT* get() { return &value_; }
  const VARIANT& value() const { return value_; }
  VARTYPE type() const { return value_.vt; }

 private:
  // All of it: a container that is asked for a type, and fails, leaves that type in it.
  VARIANT value_ = {};
};

// The value that a variant holds itself or refers to.
VARIANT& behindReference(VARIANT& variant);

// Whether it stands for an argument that the caller left out.
bool isMissing(const VARIANT& variant);

// The text up to its first NUL, in UTF-8; empty for null. Throws std::runtime_error for ill-formed
// text.
std::string textOf(const wchar_t* text);

struct BstrFree {
  void operator()(wchar_t* text) const { SysFreeString(text); }
};
using Bstr = std::unique_ptr<wchar_t, BstrFree>;

// The page's form of a text, which ends at its first NUL. One that is no UTF-8 is logged, and the
// page gets the error reply in its place. Throws std::bad_alloc.
Bstr bstrOf(const std::string& text);
// Every byte by the system's code page: for long texts of plain characters.
Bstr bstrOfBytes(std::string_view bytes);
// Throws std::bad_alloc.
Bstr bstrOfWide(const std::wstring& text);

}  // namespace Vantrel::Web::ActiveX
