// Objects that a container or a page hands to scripts and controls through IDispatch: members by
// name, each a C++ function. A function of the page is one with a member that has no name.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

class PageObject : public Counted<IDispatch> {
 public:
  using Member = std::function<HRESULT(const Variants& arguments, Variant& result)>;

  using Counted::Counted;

  // An empty name is what a call of the object itself reaches.
  void add(const std::string& name, Member member);

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* wrong) override;

 private:
  std::map<std::string, DISPID> ids_;
  std::map<DISPID, Member> members_;
};

// A function that remembers how it was called.
class PageFunction : public PageObject {
 public:
  PageFunction(ReferenceBook& book, std::string label);

  // Each call's arguments.
  std::vector<Variants> calls;
  // The texts of the first argument of each call.
  std::vector<std::string> texts() const;
  // Runs inside a call, after it was noted.
  std::function<void(const Variants&)> onCall;
  // What a call ends with: DISP_E_EXCEPTION is a function that throws.
  HRESULT answer = S_OK;
};

}  // namespace Vantrel::Web::Container
