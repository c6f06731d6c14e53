// The control's one property page, which a container shows in a frame of its own: a line of text
// and nothing to change, so it exchanges no data with the objects it is shown for and keeps none.
//
// Made by its class object, destroyed by its last Release; the thread that made it only, but for
// the count.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "browsers/activex/com_base_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

class COrvaneWebPropPage final : public CountedObject<IPropertyPage> {
 public:
  COrvaneWebPropPage() = default;
  // Takes a window that is still shown away.
  ~COrvaneWebPropPage() override;
  COrvaneWebPropPage(const COrvaneWebPropPage&) = delete;
  COrvaneWebPropPage& operator=(const COrvaneWebPropPage&) = delete;

  HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) override;
  HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT rect, WINBOOL modal) override;
  HRESULT STDMETHODCALLTYPE Deactivate() override;
  HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) override;
  HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) override;
  HRESULT STDMETHODCALLTYPE Show(UINT command) override;
  HRESULT STDMETHODCALLTYPE Move(LPCRECT rect) override;
  HRESULT STDMETHODCALLTYPE IsPageDirty() override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE Apply() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Help(LPCOLESTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;

 private:
  static INT_PTR CALLBACK dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

  HWND window_ = nullptr;  // between Activate and Deactivate
  ComPointer<IPropertyPageSite> site_;
};

}  // namespace Vantrel::Web::ActiveX
