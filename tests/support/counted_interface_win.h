// For tests: a COM object of one interface that counts its references, and the living ones of its
// kind in a number of the test's. It is born with one reference and ends with the last.
#pragma once

#include <unknwn.h>

namespace Vantrel::Web::TestSupport {

// The platform's interfaces have no virtual destructor; objects end in Release, which knows them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
template <class Interface>
class CountedInterface : public Interface {
 public:
  // Both outlive the object.
  CountedInterface(const GUID& id, int& living) : id_(id), living_(living) { ++living_; }
  virtual ~CountedInterface() { --living_; }
  CountedInterface(const CountedInterface&) = delete;
  CountedInterface& operator=(const CountedInterface&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    *object = id == id_ || id == IID_IUnknown ? static_cast<Interface*>(this) : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  const GUID& id_;
  int& living_;
  ULONG references_ = 1;
};
#pragma GCC diagnostic pop

}  // namespace Vantrel::Web::TestSupport
