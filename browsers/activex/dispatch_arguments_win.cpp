#include "browsers/activex/dispatch_arguments_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// Where in the call each of the member's parameters stands.
class Places {
 public:
  static constexpr UINT kNone = UINT_MAX;

  Places() { places_.fill(kNone); }

  HRESULT find(const DISPPARAMS& given, size_t wanted, UINT* wrong) {
    if (given.cArgs > wanted || given.cNamedArgs > given.cArgs) return DISP_E_BADPARAMCOUNT;
    // The last argument stands first, named ones before all others.
    for (UINT place = given.cNamedArgs; place < given.cArgs; ++place) {
      places_[given.cArgs - 1 - place] = place;
    }
    for (UINT place = 0; place < given.cNamedArgs; ++place) {
      // Parameters are named by their numbers, as GetIDsOfNames tells them.
      const auto number = static_cast<size_t>(given.rgdispidNamedArgs[place]);
      if (number < wanted && places_[number] == kNone) {
        places_[number] = place;
        continue;
      }
      *wrong = place;
      return DISP_E_PARAMNOTFOUND;
    }
    return S_OK;
  }

  UINT operator[](size_t number) const { return places_[number]; }

 private:
  std::array<UINT, kMostParameters> places_;
};

HRESULT takeObject(const VARIANT& given, VARIANT* value) {
  if (given.vt != VT_DISPATCH && given.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
  value->pdispVal = nullptr;
  // Null is an object that is not there, which the platform's languages have a word for.
  if (given.punkVal != nullptr &&
      FAILED(given.punkVal->QueryInterface(__uuidof(IDispatch),
                                           reinterpret_cast<void**>(&value->pdispVal)))) {
    return DISP_E_TYPEMISMATCH;
  }
  value->vt = VT_DISPATCH;
  return S_OK;
}

HRESULT takeAbsent(const Parameter& parameter, const DISPPARAMS& given, VARIANT* value) {
  if (parameter.kind != ParameterKind::kOptional) {
    return given.cNamedArgs == 0 ? DISP_E_BADPARAMCOUNT : DISP_E_PARAMNOTOPTIONAL;
  }
  value->vt = VT_ERROR;
  value->scode = DISP_E_PARAMNOTFOUND;
  return S_OK;
}

}  // namespace

HRESULT changeInto(ParameterKind kind, VARIANT& given, LCID locale, VARIANT* value) {
  Variant direct;
  const HRESULT copied = VariantCopyInd(direct.get(), &given);
  if (FAILED(copied)) return copied;
  switch (kind) {
    case ParameterKind::kText:
      return VariantChangeTypeEx(value, direct.get(), locale, 0, VT_BSTR);
    case ParameterKind::kFlag:
      return VariantChangeTypeEx(value, direct.get(), locale, 0, VT_BOOL);
    case ParameterKind::kObject:
      return takeObject(direct.value(), value);
    case ParameterKind::kAnything:
    case ParameterKind::kOptional:
      break;
  }
  return VariantCopy(value, direct.get());
}

HRESULT DispatchArguments::take(const DISPPARAMS& given, std::span<const Parameter> wanted,
                                LCID locale, UINT* wrong) {
  UINT ignored = 0;
  if (wrong == nullptr) wrong = &ignored;
  Places places;
  const HRESULT found = places.find(given, wanted.size(), wrong);
  if (FAILED(found)) return found;
  for (size_t i = 0; i < wanted.size(); ++i) {
    const UINT place = places[i];
    HRESULT result = S_OK;
    if (place == Places::kNone) {
      result = takeAbsent(wanted[i], given, values_[i].get());
      if (FAILED(result)) return result;
      continue;
    }
    VARIANT& argument = behindReference(given.rgvarg[place]);
    if (isMissing(argument) && wanted[i].kind != ParameterKind::kOptional) {
      result = DISP_E_PARAMNOTOPTIONAL;
    } else {
      result = changeInto(wanted[i].kind, argument, locale, values_[i].get());
    }
    if (SUCCEEDED(result)) continue;
    *wrong = place;
    return result;
  }
  return S_OK;
}

}  // namespace Vantrel::Web::ActiveX
