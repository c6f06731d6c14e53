#include "browsers/activex/persistence_part_win.h"

#include "browsers/activex/identifiers.h"
#include "browsers/activex/ole_control_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

// The name by which containers know a control's stream in a storage.
constexpr wchar_t kStreamName[] = L"Contents";

}  // namespace

HRESULT STDMETHODCALLTYPE PersistencePart::GetClassID(CLSID* id) {
  if (id == nullptr) return E_POINTER;
  *id = kControlClassId;
  return S_OK;
}

HRESULT PersistencePart::load(PropertyExchange& exchange) {
  return entered(E_FAIL, [&] {
    control().doPropExchange(exchange);
    modified_ = false;
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PersistencePart::InitNew() {
  return entered(E_FAIL, [this] {
    control().onResetState();
    modified_ = false;
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PersistencePart::Load(IPropertyBag* bag, IErrorLog* log) {
  if (bag == nullptr) return E_POINTER;
  BagReader reader(*bag, log);
  return load(reader);
}

HRESULT STDMETHODCALLTYPE PersistencePart::Save(IPropertyBag* bag, WINBOOL clearDirty, WINBOOL) {
  if (bag == nullptr) return E_POINTER;
  return entered(E_FAIL, [=, this] {
    BagWriter writer(*bag);
    control().doPropExchange(writer);
    if (SUCCEEDED(writer.result()) && clearDirty != FALSE) modified_ = false;
    return writer.result();
  });
}

HRESULT STDMETHODCALLTYPE PersistencePart::Load(IStream* stream) {
  if (stream == nullptr) return E_POINTER;
  StreamReader reader(*stream);
  return load(reader);
}

HRESULT STDMETHODCALLTYPE PersistencePart::Save(IStream* stream, WINBOOL clearDirty) {
  if (stream == nullptr) return E_POINTER;
  return entered(E_FAIL, [=, this] {
    StreamWriter writer(*stream);
    control().doPropExchange(writer);
    if (SUCCEEDED(writer.result()) && clearDirty != FALSE) modified_ = false;
    return writer.result();
  });
}

// Texts may be of any length: no container may rely on a size.
HRESULT STDMETHODCALLTYPE PersistencePart::GetSizeMax(ULARGE_INTEGER*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE PersistencePart::InitNew(IStorage*) {
  return InitNew();
}

HRESULT STDMETHODCALLTYPE PersistencePart::Load(IStorage* storage) {
  if (storage == nullptr) return E_POINTER;
  ComPointer<IStream> stream;
  const HRESULT opened =
      storage->OpenStream(kStreamName, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.put());
  return SUCCEEDED(opened) ? Load(stream.get()) : opened;
}

HRESULT STDMETHODCALLTYPE PersistencePart::Save(IStorage* storage, WINBOOL) {
  if (storage == nullptr) return E_POINTER;
  ComPointer<IStream> stream;
  const HRESULT made = storage->CreateStream(
      kStreamName, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream.put());
  return SUCCEEDED(made) ? Save(stream.get(), TRUE) : made;
}

}  // namespace Vantrel::Web::ActiveX
