#include "browsers/activex/ole_control_win.h"

namespace Vantrel::Web::ActiveX {

IUnknown& unknownOf(OleControl& control) {
  return control.outer();
}

OleControl::OleControl(IUnknown* outer)
    : inner_(*this), outer_(outer != nullptr ? outer : &inner_), view_(*this) {}

OleControl::~OleControl() = default;

void OleControl::onResetState() {}

void* OleControl::find(REFIID id) {
  if (id == IID_IViewObject || id == IID_IViewObject2 || id == IID_IViewObjectEx) {
    return static_cast<IViewObjectEx*>(&view_);
  }
  return findInterface(id);
}

HRESULT STDMETHODCALLTYPE OleControl::Inner::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (id == IID_IUnknown) {
    *object = static_cast<IUnknown*>(this);
  } else {
    *object = control_.find(id);
  }
  if (*object == nullptr) return E_NOINTERFACE;
  static_cast<IUnknown*>(*object)->AddRef();
  return S_OK;
}

ULONG STDMETHODCALLTYPE OleControl::Inner::AddRef() {
  return static_cast<ULONG>(++references_);
}

// While the control is taken down, what it tells others may count its references up and down again:
// the count is then far from 0.
ULONG STDMETHODCALLTYPE OleControl::Inner::Release() {
  constexpr int32_t kGoing = 1 << 30;
  const int32_t left = --references_;
  if (left != 0) return static_cast<ULONG>(left);
  references_ = kGoing;
  delete &control_;
  return 0;
}

}  // namespace Vantrel::Web::ActiveX
