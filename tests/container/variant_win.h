// Owners of the two value types that pass between a script, a container and a control: a VARIANT
// and the BSTR in it. Used on the thread of the apartment that made them.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Vantrel::Web::Container {

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  // A copy with a text or a reference of its own.
  explicit Variant(const VARIANT& value);
  Variant(const Variant& other) : Variant(other.value_) {}
  Variant(Variant&& other) noexcept : value_(std::exchange(other.value_, VARIANT{})) {}
  Variant& operator=(Variant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  // Text is UTF-8 and may hold NULs.
  static Variant text(const std::string& utf8);
  static Variant wideText(const std::wstring& text);
  static Variant nullText();
  static Variant boolean(bool value);
  static Variant integer(int32_t value);
  static Variant real(double value);
  static Variant null();
  // What an engine hands over for an argument that was left out.
  static Variant missing();
  static Variant of(IDispatch* object);
  static Variant ofUnknown(IUnknown* object);

  VARTYPE type() const { return value_.vt; }
  bool isText() const { return value_.vt == VT_BSTR; }
  // The text as UTF-8, NULs and all; empty for another type.
  std::string asText() const;
  // The object in it, null for another type; no reference is added.
  IDispatch* asDispatch() const;
  // In words, for comparisons and messages: text "a", I4 5, null, empty.
  std::string describe() const;

  const VARIANT& get() const { return value_; }
  VARIANT& raw() { return value_; }
  // Where a call is to put a value.
  VARIANT* put() {
    VariantClear(&value_);
    return &value_;
  }
  // Hands the value over.
  VARIANT take() { return std::exchange(value_, VARIANT{}); }

 private:
  VARIANT value_{};
};

using Variants = std::vector<Variant>;

// A BSTR that the caller owns.
BSTR newText(const std::wstring& text);
// A BSTR as UTF-8, NULs and all.
std::string utf8Of(BSTR text);
std::wstring wideOf(const std::string& utf8);

// The arguments in the order of the script: DISPPARAMS has the last one first.
Variants argumentsOf(const DISPPARAMS& parameters);

}  // namespace Vantrel::Web::Container
