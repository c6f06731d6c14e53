// The place of a control in a container: its client site, its control site, its in-place site with
// or without a window of the control's own, and the ambient properties. Thread of the apartment.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/container/document_win.h"
#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

// A window around the site: it tells what it hears of the object that has the keyboard.
template <typename Interface>
class WindowAround : public Counted<Interface> {
 public:
  WindowAround(ReferenceBook& owner, std::string label, HWND window)
      : Counted<Interface>(owner, std::move(label)), window_(window) {}

  std::function<void(const std::string& words)> onHeard;

  STDMETHODIMP GetWindow(HWND* window) override {
    *window = window_;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetBorder(RECT*) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP SetBorderSpace(LPCBORDERWIDTHS widths) override {
    if (onHeard) onHeard(widths != nullptr ? "border" : "no border");
    return S_OK;
  }
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
    if (onHeard) onHeard(object != nullptr ? "active" : "none active");
    return S_OK;
  }

 protected:
  void* find(REFIID id) override {
    if (id == __uuidof(IOleWindow) || id == __uuidof(IOleInPlaceUIWindow))
      return static_cast<Interface*>(this);
    return Counted<Interface>::find(id);
  }

 private:
  const HWND window_;
};

// A control asks the frame for nothing else that the tests need.
class Frame : public WindowAround<IOleInPlaceFrame> {
 public:
  using WindowAround::WindowAround;

  STDMETHODIMP InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
  STDMETHODIMP RemoveMenus(HMENU) override { return S_OK; }
  STDMETHODIMP SetStatusText(LPCOLESTR) override { return S_OK; }
  STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
  STDMETHODIMP TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }
};

using DocumentWindow = WindowAround<IOleInPlaceUIWindow>;

struct SiteSettings {
  // Whether a control may be active without a window of its own, or at all.
  bool windowless = true;
  bool inPlace = true;
  // Whether the site has a container, and one with a document.
  bool document = true;
  // Whether the document has a window of its own inside the frame.
  bool documentWindow = false;
  RECT place = {10, 20, 110, 70};
};

class Site : public Counted<IOleClientSite, IOleControlSite, IOleInPlaceSiteWindowless, IDispatch> {
 public:
  // `window` is where the control is shown.
  Site(ReferenceBook& book, std::string label, HWND window, const SiteSettings& settings = {});

  Document& document() { return document_; }
  // What the control asks for with this id.
  void setAmbient(DISPID id, const Variant& value) { ambients_[id] = value; }
  // Ids that were asked for.
  std::map<DISPID, int> askedAmbients;

  // What the control has told the site.
  bool inPlaceActive = false;
  bool uiActive = false;
  bool windowlessActive = false;
  int saves = 0;
  int invalidations = 0;
  int shows = 0;
  // And its frame and its document's window, each line beginning with "frame" or "document".
  std::vector<std::string> heardAround;
  // Runs when the frame hears that the control has the keyboard.
  std::function<void()> onFrameActive;

  // IOleClientSite
  STDMETHODIMP SaveObject() override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP GetContainer(IOleContainer** container) override;
  STDMETHODIMP ShowObject() override;
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  // IOleControlSite
  STDMETHODIMP OnControlInfoChanged() override { return S_OK; }
  STDMETHODIMP LockInPlaceActive(BOOL) override { return S_OK; }
  STDMETHODIMP GetExtendedControl(IDispatch** control) override;
  STDMETHODIMP TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
  STDMETHODIMP OnFocus(BOOL) override { return S_OK; }
  STDMETHODIMP ShowPropertyFrame() override { return E_NOTIMPL; }

  // IOleWindow, IOleInPlaceSite, IOleInPlaceSiteEx
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP CanInPlaceActivate() override;
  STDMETHODIMP OnInPlaceActivate() override;
  STDMETHODIMP OnUIActivate() override;
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                LPRECT place, LPRECT clip, LPOLEINPLACEFRAMEINFO info) override;
  STDMETHODIMP Scroll(SIZE) override { return S_FALSE; }
  STDMETHODIMP OnUIDeactivate(BOOL undoable) override;
  STDMETHODIMP OnInPlaceDeactivate() override;
  STDMETHODIMP DiscardUndoState() override { return S_OK; }
  STDMETHODIMP DeactivateAndUndo() override { return S_OK; }
  STDMETHODIMP OnPosRectChange(LPCRECT) override { return S_OK; }
  STDMETHODIMP OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) override;
  STDMETHODIMP OnInPlaceDeactivateEx(BOOL noRedraw) override;
  STDMETHODIMP RequestUIActivate() override { return S_OK; }

  // IOleInPlaceSiteWindowless
  STDMETHODIMP CanWindowlessActivate() override;
  STDMETHODIMP GetCapture() override { return S_FALSE; }
  STDMETHODIMP SetCapture(BOOL) override { return S_OK; }
  STDMETHODIMP GetFocus() override { return S_FALSE; }
  STDMETHODIMP SetFocus(BOOL) override { return S_OK; }
  STDMETHODIMP GetDC(LPCRECT place, DWORD flags, HDC* context) override;
  STDMETHODIMP ReleaseDC(HDC context) override;
  STDMETHODIMP InvalidateRect(LPCRECT place, BOOL erase) override;
  STDMETHODIMP InvalidateRgn(HRGN region, BOOL erase) override;
  STDMETHODIMP ScrollRect(INT, INT, LPCRECT, LPCRECT) override { return E_NOTIMPL; }
  STDMETHODIMP AdjustRect(LPRECT) override { return S_OK; }
  STDMETHODIMP OnDefWindowMessage(UINT, WPARAM, LPARAM, LRESULT*) override { return S_FALSE; }

  // IDispatch, of the ambient properties
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* wrong) override;

 protected:
  void* find(REFIID id) override;

 private:
  const HWND window_;
  const SiteSettings settings_;
  Document& document_;
  Frame& frame_;
  DocumentWindow& documentWindow_;
  std::map<DISPID, Variant> ambients_;
};

}  // namespace Vantrel::Web::Container
