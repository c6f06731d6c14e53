// The Netscape script object as a script engine wants it: an IDispatch that calls the object's
// class and converts values both ways, as browsers do. Functions of the page become objects of the
// counting host. Browser's thread only.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"
#include "tests/host/counting_host.h"
#include "tests/host/instance.h"

namespace Vantrel::Web::Faces {

class NetscapeBridge : public Container::Counted<IDispatch> {
 public:
  NetscapeBridge(Container::ReferenceBook& book, std::string label, Host::CountingHost& host,
                 Host::Instance& instance)
      : Counted(book, std::move(label)), host_(host), instance_(instance) {}

  // What the plug-in holds on objects of the page at this moment.
  Host::Kept held() const;
  // Gives the page's functions back.
  void drop() { functions_.clear(); }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* wrong) override;

 private:
  struct PageFunction {
    Container::Variant function;
    Host::PageReference reference;
  };

  Host::Value valueOf(const Container::Variant& variant);
  Container::Variant variantOf(const Host::Value& value) const;
  NPObject* objectOf(const Container::Variant& function);

  Host::CountingHost& host_;
  Host::Instance& instance_;
  std::vector<std::string> names_;
  std::map<IDispatch*, PageFunction> functions_;
};

}  // namespace Vantrel::Web::Faces
