#include "tests/container/site_win.h"

namespace Vantrel::Web::Container {

Site::Site(ReferenceBook& owner, std::string label, HWND window, const SiteSettings& settings)
    : Counted(owner, label),
      window_(window),
      settings_(settings),
      document_(owner.make<Document>(label + "'s container")),
      frame_(owner.make<Frame>(label + "'s frame", window)),
      documentWindow_(owner.make<DocumentWindow>(label + "'s document window", window)) {
  frame_.onHeard = [this](const std::string& words) {
    heardAround.push_back("frame " + words);
    if (words == "active" && onFrameActive) onFrameActive();
  };
  documentWindow_.onHeard = [this](const std::string& words) {
    heardAround.push_back("document " + words);
  };
}

void* Site::find(REFIID id) {
  if (id == __uuidof(IOleWindow) || id == __uuidof(IOleInPlaceSite) ||
      id == __uuidof(IOleInPlaceSiteEx) || id == __uuidof(IOleInPlaceSiteWindowless)) {
    const bool offered = id == __uuidof(IOleInPlaceSiteWindowless) ? settings_.windowless : true;
    return settings_.inPlace && offered ? static_cast<IOleInPlaceSiteWindowless*>(this) : nullptr;
  }
  return Counted::find(id);
}

STDMETHODIMP Site::SaveObject() {
  note("SaveObject");
  ++saves;
  return S_OK;
}

STDMETHODIMP Site::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker != nullptr) *moniker = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP Site::GetContainer(IOleContainer** container) {
  note("GetContainer");
  if (container == nullptr) return E_POINTER;
  *container = nullptr;
  if (!settings_.document || document_.address.container == DocumentStep::kFails)
    return E_NOINTERFACE;
  if (document_.address.container == DocumentStep::kNull) return S_OK;
  *container = &document_;
  document_.AddRef();
  return S_OK;
}

STDMETHODIMP Site::ShowObject() {
  note("ShowObject");
  ++shows;
  return S_OK;
}

STDMETHODIMP Site::GetExtendedControl(IDispatch** control) {
  if (control != nullptr) *control = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP Site::GetWindow(HWND* window) {
  note("GetWindow");
  *window = window_;
  return S_OK;
}

STDMETHODIMP Site::CanInPlaceActivate() {
  note("CanInPlaceActivate");
  return settings_.inPlace ? S_OK : S_FALSE;
}

STDMETHODIMP Site::OnInPlaceActivate() {
  note("OnInPlaceActivate");
  inPlaceActive = true;
  return S_OK;
}

STDMETHODIMP Site::OnUIActivate() {
  note("OnUIActivate");
  uiActive = true;
  return S_OK;
}

STDMETHODIMP Site::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                    LPRECT place, LPRECT clip, LPOLEINPLACEFRAMEINFO info) {
  note("GetWindowContext");
  *frame = &frame_;
  frame_.AddRef();
  *document = settings_.documentWindow ? &documentWindow_ : nullptr;
  if (*document != nullptr) documentWindow_.AddRef();
  *place = settings_.place;
  *clip = settings_.place;
  info->fMDIApp = FALSE;
  info->hwndFrame = window_;
  info->haccel = nullptr;
  info->cAccelEntries = 0;
  return S_OK;
}

STDMETHODIMP Site::OnUIDeactivate(BOOL) {
  note("OnUIDeactivate");
  uiActive = false;
  return S_OK;
}

STDMETHODIMP Site::OnInPlaceDeactivate() {
  note("OnInPlaceDeactivate");
  inPlaceActive = false;
  windowlessActive = false;
  return S_OK;
}

STDMETHODIMP Site::OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) {
  note("OnInPlaceActivateEx");
  if (noRedraw != nullptr) *noRedraw = FALSE;
  inPlaceActive = true;
  windowlessActive = (flags & ACTIVATE_WINDOWLESS) != 0;
  return S_OK;
}

STDMETHODIMP Site::OnInPlaceDeactivateEx(BOOL) {
  return OnInPlaceDeactivate();
}

STDMETHODIMP Site::CanWindowlessActivate() {
  note("CanWindowlessActivate");
  return settings_.windowless ? S_OK : S_FALSE;
}

STDMETHODIMP Site::GetDC(LPCRECT, DWORD, HDC* context) {
  *context = ::GetDC(window_);
  return *context != nullptr ? S_OK : E_FAIL;
}

STDMETHODIMP Site::ReleaseDC(HDC context) {
  ::ReleaseDC(window_, context);
  return S_OK;
}

STDMETHODIMP Site::InvalidateRect(LPCRECT, BOOL) {
  note("InvalidateRect");
  ++invalidations;
  return S_OK;
}

STDMETHODIMP Site::InvalidateRgn(HRGN, BOOL) {
  note("InvalidateRgn");
  ++invalidations;
  return S_OK;
}

STDMETHODIMP Site::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP Site::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP Site::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP Site::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                          UINT*) {
  note("Invoke");
  ++askedAmbients[id];
  const auto found = ambients_.find(id);
  if (found == ambients_.end()) return DISP_E_MEMBERNOTFOUND;
  if (result != nullptr) *result = Variant(found->second).take();
  return S_OK;
}

}  // namespace Vantrel::Web::Container
