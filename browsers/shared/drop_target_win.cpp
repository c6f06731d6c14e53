#include "browsers/shared/drop_target_win.h"

#include <exception>

#include "runtime/ov_log.h"
#include "threads/modal_scope.h"

namespace Vantrel::Web {

namespace {

// Runs `function` with the receiver, if there is one. The target stays for the call's time, which
// may end the receiver.
template <class Function>
HRESULT received(OrvaneWebIDropTarget& target, Function function) {
  struct Reference {
    explicit Reference(OrvaneWebIDropTarget& held) : target(held) { target.AddRef(); }
    ~Reference() { target.Release(); }
    OrvaneWebIDropTarget& target;
  };
  const ModalScope scope;
  const Reference held(target);
  try {
    if (DragReceiver* const receiver = target.receiver(); receiver != nullptr) {
      return function(*receiver);
    }
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  return S_OK;
}

}  // namespace

HRESULT STDMETHODCALLTYPE OrvaneWebIDropTarget::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  if (id != IID_IUnknown && id != IID_IDropTarget) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  *object = static_cast<IDropTarget*>(this);
  AddRef();
  return S_OK;
}

ULONG STDMETHODCALLTYPE OrvaneWebIDropTarget::AddRef() {
  return static_cast<ULONG>(++references_);
}

ULONG STDMETHODCALLTYPE OrvaneWebIDropTarget::Release() {
  const int32_t left = --references_;
  if (left < 0) delete this;
  return static_cast<ULONG>(left);
}

HRESULT STDMETHODCALLTYPE OrvaneWebIDropTarget::DragEnter(IDataObject* data, DWORD, POINTL,
                                                          DWORD*) {
  return received(*this, [data](DragReceiver& receiver) { return receiver.dragEnter(data); });
}

HRESULT STDMETHODCALLTYPE OrvaneWebIDropTarget::DragOver(DWORD, POINTL, DWORD*) {
  return received(*this, [](DragReceiver& receiver) {
    receiver.dragOver();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE OrvaneWebIDropTarget::DragLeave() {
  return received(*this, [](DragReceiver& receiver) {
    receiver.dragLeave();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE OrvaneWebIDropTarget::Drop(IDataObject* data, DWORD, POINTL,
                                                     DWORD* effect) {
  return received(*this, [=](DragReceiver& receiver) { return receiver.drop(data, effect); });
}

}  // namespace Vantrel::Web
