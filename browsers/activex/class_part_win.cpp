#include "browsers/activex/class_part_win.h"

#include "browsers/activex/identifiers.h"
#include "browsers/activex/type_library_win.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr DWORD kSafety = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;

}  // namespace

HRESULT STDMETHODCALLTYPE ClassPart::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return entered(E_OUTOFMEMORY, [info] { return loadTypeInfo(kControlClassId, info); });
}

HRESULT STDMETHODCALLTYPE ClassPart::GetGUID(DWORD kind, GUID* id) {
  if (id == nullptr) return E_POINTER;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
  *id = kEventInterfaceId;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassPart::GetPages(CAUUID* pages) {
  if (pages == nullptr) return E_POINTER;
  pages->cElems = 0;
  pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
  if (pages->pElems == nullptr) return E_OUTOFMEMORY;
  pages->pElems[0] = kPropertyPageClassId;
  pages->cElems = 1;
  return S_OK;
}

// Safe in every way and at all times, as the categories of the class say too: what a page may do is
// decided in the core.
HRESULT STDMETHODCALLTYPE ClassPart::GetInterfaceSafetyOptions(REFIID, DWORD* supported,
                                                               DWORD* enabled) {
  if (supported == nullptr || enabled == nullptr) return E_POINTER;
  *supported = kSafety;
  *enabled = kSafety;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassPart::SetInterfaceSafetyOptions(REFIID, DWORD mask, DWORD enabled) {
  return (mask & enabled & ~kSafety) == 0 ? S_OK : E_FAIL;
}

}  // namespace Vantrel::Web::ActiveX
