// How a container loads and stores the control's properties. A page's container gives them in a
// property bag; others keep a stream, or a storage with one.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "browsers/activex/part_win.h"
#include "browsers/activex/property_exchange_win.h"

namespace Vantrel::Web::ActiveX {

class PersistencePart final
    : public Part<IPersistPropertyBag, IPersistStreamInit, IPersistStorage> {
 public:
  using Part::Part;

  // Whether properties have changed since they were loaded or stored.
  bool isModified() const { return modified_; }
  void setModified(bool modified) { modified_ = modified; }

  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override;
  HRESULT STDMETHODCALLTYPE IsDirty() override { return modified_ ? S_OK : S_FALSE; }
  HRESULT STDMETHODCALLTYPE InitNew() override;

  HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) override;
  HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, WINBOOL clearDirty, WINBOOL saveAll) override;

  HRESULT STDMETHODCALLTYPE Load(IStream* stream) override;
  HRESULT STDMETHODCALLTYPE Save(IStream* stream, WINBOOL clearDirty) override;
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;

  HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override;
  HRESULT STDMETHODCALLTYPE Load(IStorage* storage) override;
  HRESULT STDMETHODCALLTYPE Save(IStorage* storage, WINBOOL sameAsLoad) override;
  // The storage is never held.
  HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE HandsOffStorage() override { return S_OK; }

 private:
  // The control takes its properties from the exchange.
  HRESULT load(PropertyExchange& exchange);

  bool modified_ = false;
};

}  // namespace Vantrel::Web::ActiveX
