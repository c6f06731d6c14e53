#include "browsers/activex/object_part_win.h"

#include <olectl.h>

#include <cwchar>

#include "browsers/activex/enumerators_win.h"
#include "browsers/activex/identifiers.h"
#include "browsers/activex/module_resources_win.h"
#include "browsers/activex/ole_control_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

HRESULT duplicate(const std::wstring& text, LPOLESTR* copy) {
  const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  *copy = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
  if (*copy == nullptr) return E_OUTOFMEMORY;
  std::wmemcpy(*copy, text.c_str(), text.size() + 1);
  return S_OK;
}

// What a container offers its user to do with the control.
struct Verb {
  LONG number;
  const wchar_t* name;

  void give(OLEVERB* verb) const {
    *verb = {number, nullptr, MF_STRING | MF_ENABLED, OLEVERBATTRIB_ONCONTAINERMENU};
    duplicate(name, &verb->lpszVerbName);
  }
};

}  // namespace

HRESULT STDMETHODCALLTYPE ObjectPart::SetClientSite(IOleClientSite* site) {
  return entered(E_FAIL, [=, this] {
    site_ = ComPointer<IOleClientSite>(site);
    control().onSetClientSite();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetClientSite(IOleClientSite** site) {
  if (site == nullptr) return E_POINTER;
  *site = site_.get();
  if (*site != nullptr) (*site)->AddRef();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ObjectPart::Close(DWORD save) {
  return entered(E_FAIL, [=, this] {
    control().inPlace().deactivate();
    // There is nothing to ask the user: a container that would have it asked has it saved.
    if (save != OLECLOSE_NOSAVE && control().persistence().isModified() && site_) {
      const ComPointer<IOleClientSite> site(site_.get());
      site->SaveObject();
    }
    const ComPointer<IOleAdviseHolder> holder(advises_.get());
    if (holder) holder->SendOnClose();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) {
  if (moniker == nullptr) return E_POINTER;
  *moniker = nullptr;
  return site_ ? site_->GetMoniker(assign, which, moniker) : E_UNEXPECTED;
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetClipboardData(DWORD, IDataObject** data) {
  if (data != nullptr) *data = nullptr;
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ObjectPart::DoVerb(LONG verb, MSG*, IOleClientSite*, LONG, HWND parent,
                                             LPCRECT place) {
  return entered(E_FAIL, [=, this]() -> HRESULT {
    switch (verb) {
      case OLEIVERB_PRIMARY:
      case OLEIVERB_SHOW:
      case OLEIVERB_INPLACEACTIVATE:
        return control().inPlace().activate(false);
      case OLEIVERB_UIACTIVATE:
        return control().inPlace().activate(true);
      case OLEIVERB_HIDE:
        control().inPlace().hide();
        return S_OK;
      case OLEIVERB_DISCARDUNDOSTATE:
        return S_OK;
      case OLEIVERB_PROPERTIES:
        return showProperties(parent, place);
      default:
        // A verb of its own the control has none of; others act as the first one does.
        return verb > 0 ? OLEOBJ_S_INVALIDVERB : E_NOTIMPL;
    }
  });
}

HRESULT ObjectPart::showProperties(HWND parent, LPCRECT place) {
  ComPointer<IOleControlSite> controlSite;
  if (site_) site_->QueryInterface(IID_IOleControlSite, controlSite.putVoid());
  if (controlSite && controlSite->ShowPropertyFrame() == S_OK) return S_OK;
  IUnknown* object = &control().outer();
  GUID page = kPropertyPageClassId;
  const std::wstring caption = moduleText(kNameText);
  const UINT left = place != nullptr && place->left > 0 ? static_cast<UINT>(place->left) : 0;
  const UINT top = place != nullptr && place->top > 0 ? static_cast<UINT>(place->top) : 0;
  return OleCreatePropertyFrame(parent, left, top, caption.c_str(), 1, &object, 1, &page,
                                LOCALE_USER_DEFAULT, 0, nullptr);
}

HRESULT STDMETHODCALLTYPE ObjectPart::EnumVerbs(IEnumOLEVERB** verbs) {
  if (verbs == nullptr) return E_POINTER;
  *verbs = nullptr;
  return entered(E_OUTOFMEMORY, [verbs] {
    *verbs =
        new Enumerator<IEnumOLEVERB, OLEVERB, Verb>({{OLEIVERB_PROPERTIES, L"&Properties"}}, 0);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetUserClassID(CLSID* id) {
  if (id == nullptr) return E_POINTER;
  *id = kControlClassId;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetUserType(DWORD, LPOLESTR* name) {
  if (name == nullptr) return E_POINTER;
  *name = nullptr;
  return entered(E_OUTOFMEMORY, [name] { return duplicate(moduleText(kNameText), name); });
}

HRESULT STDMETHODCALLTYPE ObjectPart::SetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT || size->cx < 0 || size->cy < 0) return E_FAIL;
  control().setExtent(*size);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return E_FAIL;
  *size = control().extent();
  return S_OK;
}

IOleAdviseHolder* ObjectPart::advises() {
  if (!advises_) CreateOleAdviseHolder(advises_.put());
  return advises_.get();
}

HRESULT STDMETHODCALLTYPE ObjectPart::Advise(IAdviseSink* sink, DWORD* connection) {
  if (connection == nullptr) return E_POINTER;
  *connection = 0;
  IOleAdviseHolder* const holder = advises();
  return holder != nullptr ? holder->Advise(sink, connection) : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE ObjectPart::Unadvise(DWORD connection) {
  return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT STDMETHODCALLTYPE ObjectPart::EnumAdvise(IEnumSTATDATA** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  return advises_ ? advises_->EnumAdvise(connections) : S_OK;
}

HRESULT STDMETHODCALLTYPE ObjectPart::GetMiscStatus(DWORD aspect, DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = 0;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *status = kControlMiscStatus;
  return S_OK;
}

// No key does anything in the control.
HRESULT STDMETHODCALLTYPE ObjectPart::GetControlInfo(CONTROLINFO* info) {
  if (info == nullptr) return E_POINTER;
  info->hAccel = nullptr;
  info->cAccel = 0;
  info->dwFlags = 0;
  return S_OK;
}

}  // namespace Vantrel::Web::ActiveX
