#include "tests/container/dragged_files_win.h"

#include <shlobj.h>

#include <cstring>

namespace Vantrel::Web::Container {

DraggedFiles::DraggedFiles(ReferenceBook& owner, std::string label,
                           const std::vector<std::wstring>& paths)
    : Counted(owner, std::move(label)) {
  for (const std::wstring& path : paths) names_ += path + L'\0';
  names_ += L'\0';
  // The system takes the first name for granted: a list of nothing is one empty name.
  if (paths.empty()) names_ += L'\0';
}

STDMETHODIMP DraggedFiles::GetData(FORMATETC* format, STGMEDIUM* medium) {
  note("GetData");
  const HRESULT offered = QueryGetData(format);
  if (FAILED(offered)) return offered;
  if (otherForm != TYMED_NULL) {
    giveOtherForm(*medium);
    return S_OK;
  }
  const size_t bytes = names_.size() * sizeof(wchar_t);
  *medium = {};
  medium->tymed = TYMED_HGLOBAL;
  medium->hGlobal = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
  auto* const files = static_cast<DROPFILES*>(GlobalLock(medium->hGlobal));
  files->pFiles = sizeof(DROPFILES);
  files->fWide = TRUE;
  std::memcpy(files + 1, names_.data(), bytes);
  GlobalUnlock(medium->hGlobal);
  return S_OK;
}

void DraggedFiles::giveOtherForm(STGMEDIUM& medium) {
  medium = {};
  medium.tymed = otherForm;
  medium.pUnkForRelease = this;
  AddRef();
  if (otherForm == TYMED_ISTREAM) CreateStreamOnHGlobal(nullptr, TRUE, &medium.pstm);
}

STDMETHODIMP DraggedFiles::QueryGetData(FORMATETC* format) {
  if (FAILED(answer)) return answer;
  return format->cfFormat == CF_HDROP && (format->tymed & TYMED_HGLOBAL) != 0 ? S_OK
                                                                              : DV_E_FORMATETC;
}

HRESULT dragAndDrop(IDropTarget& target, IDataObject& data) {
  DWORD effect = DROPEFFECT_COPY;
  const HRESULT entered = target.DragEnter(&data, MK_LBUTTON, {}, &effect);
  if (FAILED(entered)) return entered;
  effect = DROPEFFECT_COPY;
  target.DragOver(MK_LBUTTON, {}, &effect);
  effect = DROPEFFECT_COPY;
  return target.Drop(&data, 0, {}, &effect);
}

}  // namespace Vantrel::Web::Container
