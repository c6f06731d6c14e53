#include "browsers/activex/view_part_win.h"

#include <utility>

#include "browsers/activex/ole_control_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr LONG kWhole = -1;  // the only part of an object that controls have

// Of all aspects a control has its content only.
HRESULT check(DWORD aspect, LONG index = kWhole) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  return index == kWhole ? S_OK : DV_E_LINDEX;
}

}  // namespace

HRESULT STDMETHODCALLTYPE ViewPart::Draw(DWORD aspect, LONG index, void*, DVTARGETDEVICE*, HDC,
                                         HDC dc, LPCRECTL bounds, LPCRECTL,
                                         WINBOOL(CALLBACK* mayGoOn)(ULONG_PTR), ULONG_PTR cookie) {
  if (const HRESULT result = check(aspect, index); FAILED(result)) return result;
  RECT rect = {};
  if (bounds != nullptr) {
    rect = {bounds->left, bounds->top, bounds->right, bounds->bottom};
  } else if (const RECT* const place = control().windowlessPlace(); place != nullptr) {
    rect = *place;
  } else {
    return E_INVALIDARG;
  }
  if (dc == nullptr) return E_INVALIDARG;
  if (mayGoOn != nullptr && mayGoOn(cookie) == FALSE) return E_ABORT;
  const int saved = SaveDC(dc);
  guarded([this, dc, &rect] { control().onDraw(dc, rect); });
  RestoreDC(dc, saved);
  return S_OK;
}

// The picture has no colours of its own that a palette would need.
HRESULT STDMETHODCALLTYPE ViewPart::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                                LOGPALETTE** colors) {
  if (colors == nullptr) return E_POINTER;
  *colors = nullptr;
  return S_FALSE;
}

// The picture changes once at most, so nobody needs it to stand still.
HRESULT STDMETHODCALLTYPE ViewPart::Freeze(DWORD, LONG, void*, DWORD*) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::Unfreeze(DWORD) {
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE ViewPart::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
  if (sink != nullptr) sink->AddRef();
  *sink_.put() = sink;
  sinkAspects_ = sink != nullptr ? aspects : 0;
  sinkFlags_ = sink != nullptr ? flags : 0;
  if ((sinkFlags_ & ADVF_PRIMEFIRST) != 0) sendViewChange();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  if (aspects != nullptr) *aspects = sinkAspects_;
  if (flags != nullptr) *flags = sinkFlags_;
  if (sink == nullptr) return S_OK;
  *sink = sink_.get();
  if (*sink != nullptr) (*sink)->AddRef();
  return S_OK;
}

void ViewPart::sendViewChange() {
  if (!sink_ || (sinkAspects_ & DVASPECT_CONTENT) == 0) return;
  sink_->AddRef();
  ComPointer<IAdviseSink> told;
  *told.put() = sink_.get();
  if ((sinkFlags_ & ADVF_ONLYONCE) != 0) SetAdvise(0, 0, nullptr);
  told->OnViewChange(DVASPECT_CONTENT, kWhole);
}

HRESULT STDMETHODCALLTYPE ViewPart::GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE*,
                                              LPSIZEL size) {
  if (size == nullptr) return E_POINTER;
  if (const HRESULT result = check(aspect, index); FAILED(result)) return result;
  *size = control().extent();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ViewPart::GetRect(DWORD aspect, LPRECTL rect) {
  if (rect == nullptr) return E_POINTER;
  if (const HRESULT result = check(aspect); FAILED(result)) return result;
  *rect = {0, 0, control().extent().cx, control().extent().cy};
  return S_OK;
}

// Neither opaque nor solid: without a picture nothing is painted at all.
HRESULT STDMETHODCALLTYPE ViewPart::GetViewStatus(DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = 0;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ViewPart::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG,
                                                  DWORD* result) {
  if (bounds == nullptr || result == nullptr) return E_POINTER;
  if (const HRESULT checked = check(aspect); FAILED(checked)) return checked;
  *result = PtInRect(bounds, point) != FALSE ? HITRESULT_HIT : HITRESULT_OUTSIDE;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ViewPart::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG,
                                                 DWORD* result) {
  if (bounds == nullptr || rect == nullptr || result == nullptr) return E_POINTER;
  if (const HRESULT checked = check(aspect); FAILED(checked)) return checked;
  RECT common = {};
  *result = IntersectRect(&common, bounds, rect) != FALSE ? HITRESULT_HIT : HITRESULT_OUTSIDE;
  return S_OK;
}

// The picture fits itself to any size.
HRESULT STDMETHODCALLTYPE ViewPart::GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC,
                                                     DVEXTENTINFO*, LPSIZEL) {
  return E_NOTIMPL;
}

}  // namespace Vantrel::Web::ActiveX
