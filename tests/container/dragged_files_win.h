// Files that a user drags: the data of such a drag, and one drag from its coming to its drop, as
// the platform calls a drop target. Thread of the apartment.
#pragma once

#include <windows.h>
#include <oleidl.h>

#include <string>
#include <vector>

#include "tests/container/reference_book_win.h"

namespace Vantrel::Web::Container {

class DraggedFiles : public Counted<IDataObject> {
 public:
  DraggedFiles(ReferenceBook& book, std::string label, const std::vector<std::wstring>& paths);

  // What a request for the list ends with.
  HRESULT answer = S_OK;
  // What it hands over instead of the list, in whatever form it was asked for: with TYMED_ISTREAM a
  // stream, with TYMED_HGLOBAL a block that is none. The data is then held until it is given back.
  DWORD otherForm = TYMED_NULL;

  STDMETHODIMP GetData(FORMATETC* format, STGMEDIUM* medium) override;
  STDMETHODIMP GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  STDMETHODIMP QueryGetData(FORMATETC* format) override;
  STDMETHODIMP GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
  STDMETHODIMP SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
  STDMETHODIMP DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP DUnadvise(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }

 private:
  void giveOtherForm(STGMEDIUM& medium);

  std::wstring names_;
};

// Enters, moves, drops; a target that refuses the entry gets no more. What the last call said.
HRESULT dragAndDrop(IDropTarget& target, IDataObject& data);

}  // namespace Vantrel::Web::Container
