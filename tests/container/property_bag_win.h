// A page's parameters of an element as a property bag. Reading is by name without regard to case,
// as pages write names; a missing one is E_INVALIDARG, which is how containers say so.
#pragma once

#include <ocidl.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

using Parameters = std::map<std::string, std::string>;

class PropertyBag : public Counted<IPropertyBag> {
 public:
  PropertyBag(ReferenceBook& book, std::string label, const Parameters& parameters = {});

  // A value of another type than text, or what an odd container hands over.
  void set(const std::string& name, const Variant& value) { values_[name] = value; }
  // A read of this name ends so, with nothing written.
  void fail(const std::string& name, HRESULT result) { failures_[name] = result; }

  // The names that were asked for and not empty, in order, and what was written.
  const std::vector<std::string>& asked() const { return asked_; }
  const std::map<std::string, Variant>& written() const { return written_; }

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog* log) override;
  STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override;

 private:
  std::map<std::string, Variant> values_;
  std::map<std::string, HRESULT> failures_;
  std::vector<std::string> asked_;
  std::map<std::string, Variant> written_;
};

}  // namespace Vantrel::Web::Container
