// How a container asks for the control's picture without a window: IViewObject and what follows it,
// and the one sink that it may leave to hear when the picture changes.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "browsers/activex/part_win.h"
#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::ActiveX {

class ViewPart final : public Part<IViewObjectEx> {
 public:
  using Part::Part;

  HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device,
                                 HDC deviceInfo, HDC dc, LPCRECTL bounds, LPCRECTL metafile,
                                 WINBOOL(CALLBACK* mayGoOn)(ULONG_PTR), ULONG_PTR cookie) override;
  HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* aspectInfo,
                                        DVTARGETDEVICE* device, HDC deviceInfo,
                                        LOGPALETTE** colors) override;
  HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* aspectInfo,
                                   DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unfreeze(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                      LPSIZEL size) override;
  HRESULT STDMETHODCALLTYPE GetRect(DWORD aspect, LPRECTL rect) override;
  HRESULT STDMETHODCALLTYPE GetViewStatus(DWORD* status) override;
  HRESULT STDMETHODCALLTYPE QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG closeHint,
                                          DWORD* result) override;
  HRESULT STDMETHODCALLTYPE QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG closeHint,
                                         DWORD* result) override;
  HRESULT STDMETHODCALLTYPE GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                             HDC deviceInfo, DVEXTENTINFO* info,
                                             LPSIZEL size) override;

  // Tells the sink, whose container may do anything then, even end the control.
  void sendViewChange();

 private:
  ComPointer<IAdviseSink> sink_;
  DWORD sinkAspects_ = 0;
  DWORD sinkFlags_ = 0;
};

}  // namespace Vantrel::Web::ActiveX
