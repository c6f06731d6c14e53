// The arguments of one call of a script, as the member wants them. On the stack of the call.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <array>
#include <span>
#include <string>

#include "browsers/activex/variant_win.h"

namespace Vantrel::Web::ActiveX {

// What a member wants an argument to be made of.
enum class ParameterKind { kText, kFlag, kObject, kAnything, kOptional };

struct Parameter {
  const wchar_t* name = nullptr;
  ParameterKind kind = ParameterKind::kAnything;
};

// As many as a member can want.
inline constexpr size_t kMostParameters = 5;

class DispatchArguments {
 public:
  // Takes the call's arguments, positional and named, and changes their types by the platform's
  // rules. The result is the call's; `*wrong`, if not null, is where the bad argument stands. The
  // change of an object into a text runs code of the object's.
  HRESULT take(const DISPPARAMS& given, std::span<const Parameter> wanted, LCID locale,
               UINT* wrong);

  // Throws std::runtime_error for ill-formed text.
  std::string text(size_t index) const { return textOf(values_[index].value().bstrVal); }
  bool flag(size_t index) const { return values_[index].value().boolVal != VARIANT_FALSE; }
  IDispatch* object(size_t index) const { return values_[index].value().pdispVal; }
  const VARIANT& anything(size_t index) const { return values_[index].value(); }

 private:
  std::array<Variant, kMostParameters> values_;
};

// Changes one argument into the kind.
HRESULT changeInto(ParameterKind kind, VARIANT& given, LCID locale, VARIANT* value);

}  // namespace Vantrel::Web::ActiveX
