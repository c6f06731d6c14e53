// What the control says of itself: its description, its property page, and that neither scripts nor
// properties of a page that is not trusted do harm with it.
#pragma once

#include <windows.h>
#include <objsafe.h>
#include <ocidl.h>

#include "browsers/activex/part_win.h"

namespace Vantrel::Web::ActiveX {

class ClassPart final : public Part<IProvideClassInfo2, ISpecifyPropertyPages, IObjectSafety> {
 public:
  explicit ClassPart(OleControl& control) : Part(control) {}

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* id) override;
  HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) override;
  HRESULT STDMETHODCALLTYPE GetInterfaceSafetyOptions(REFIID id, DWORD* supported,
                                                      DWORD* enabled) override;
  HRESULT STDMETHODCALLTYPE SetInterfaceSafetyOptions(REFIID id, DWORD mask,
                                                      DWORD enabled) override;
};

}  // namespace Vantrel::Web::ActiveX
