#include "browsers/activex/ole_control_win.h"
#include "browsers/activex/orvane_web_ctrl_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

HRESULT STDMETHODCALLTYPE ViewPart::Draw(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, HDC, LPCRECTL,
                                         LPCRECTL, WINBOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                                LOGPALETTE**) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::Freeze(DWORD, LONG, void*, DWORD*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::Unfreeze(DWORD) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::SetAdvise(DWORD, DWORD, IAdviseSink*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetAdvise(DWORD*, DWORD*, IAdviseSink**) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetExtent(DWORD, LONG, DVTARGETDEVICE*, LPSIZEL) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetRect(DWORD, LPRECTL) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetViewStatus(DWORD*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::QueryHitPoint(DWORD, LPCRECT, POINT, LONG, DWORD*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::QueryHitRect(DWORD, LPCRECT, LPCRECT, LONG, DWORD*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC,
                                                     DVEXTENTINFO*, LPSIZEL) {
  return E_NOTIMPL;
}

void COrvaneWebCtrl::onDraw(HDC, const RECT&) {
  OV_DEBUG("COrvaneWebCtrl::OnDraw()");
}

void COrvaneWebCtrl::onCreate(CREATESTRUCTW&) {
  OV_DEBUG("COrvaneWebCtrl::OnCreate()");
}

}  // namespace Vantrel::Web::ActiveX
