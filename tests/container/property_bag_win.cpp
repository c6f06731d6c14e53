#include "tests/container/property_bag_win.h"

#include <algorithm>

#include "text/wide_text.h"

namespace Vantrel::Web::Container {

namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return text;
}

}  // namespace

PropertyBag::PropertyBag(ReferenceBook& book, std::string label, const Parameters& parameters)
    : Counted(book, std::move(label)) {
  for (const auto& [name, value] : parameters) values_[lowerCase(name)] = Variant::text(value);
}

STDMETHODIMP PropertyBag::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
  note("Read");
  if (name == nullptr || value == nullptr) return E_POINTER;
  const std::string key = lowerCase(toUtf8(name));
  asked_.push_back(key);
  const auto failure = failures_.find(key);
  if (failure != failures_.end()) return failure->second;
  const auto found = values_.find(key);
  if (found == values_.end()) return E_INVALIDARG;
  // The reader may ask for a type, by what it left in the variant.
  const VARTYPE wanted = value->vt;
  VariantInit(value);
  const HRESULT copied = VariantCopy(value, &found->second.raw());
  if (FAILED(copied) || wanted == VT_EMPTY || wanted == value->vt) return copied;
  return VariantChangeType(value, value, 0, wanted);
}

STDMETHODIMP PropertyBag::Write(LPCOLESTR name, VARIANT* value) {
  note("Write");
  if (name == nullptr || value == nullptr) return E_POINTER;
  written_[lowerCase(toUtf8(name))] = Variant(*value);
  return S_OK;
}

}  // namespace Vantrel::Web::Container
