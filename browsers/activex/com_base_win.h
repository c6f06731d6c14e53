// What classes that implement interfaces of the platform are made of.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <atomic>

#include "browsers/activex/module_count_win.h"

namespace Vantrel::Web::ActiveX {

// The interfaces have no virtual destructor; this adds one behind their functions.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
template <class... Interfaces>
class ComBase : public Interfaces... {
 public:
  ComBase(const ComBase&) = delete;
  ComBase& operator=(const ComBase&) = delete;

 protected:
  ComBase() = default;
  virtual ~ComBase() = default;
};
#pragma GCC diagnostic pop

// An object with a count of its own, which starts at one reference for its maker; the last Release
// deletes it. Answers for the interfaces it is made of. Counting is for any thread.
template <class First, class... Others>
class CountedObject : public ComBase<First, Others...> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (id == IID_IUnknown) *object = static_cast<First*>(this);
    offer<First>(id, object);
    (offer<Others>(id, object), ...);
    if (*object == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  template <class Interface>
  void offer(REFIID id, void** object) {
    if (id == __uuidof(Interface)) *object = static_cast<Interface*>(this);
  }

  const ModuleReference moduleReference_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace Vantrel::Web::ActiveX
