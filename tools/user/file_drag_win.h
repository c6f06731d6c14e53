// A drag of files as a user's hand does it, with the mouse: for the browser's command and for
// tests. All on the thread of the window that the drag begins in; the mouse is moved by another.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <atomic>
#include <vector>

namespace Vantrel::StandIn {

// The platform's interfaces have no virtual destructor.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// The data of a drag: a list of files, or none, which is then no list. Lives on its owner's stack.
class FileList : public IDataObject {
 public:
  // The paths, each with a NUL behind it. No texts of the C++ library: where this is compiled into
  // a program of the host system, that library has wider characters.
  explicit FileList(std::vector<wchar_t> paths);
  virtual ~FileList() = default;
  FileList(const FileList&) = delete;
  FileList& operator=(const FileList&) = delete;

  // How often the data was asked for.
  int asked() const { return asked_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override;
  HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override;
  HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }

 private:
  std::vector<wchar_t> names_;
  int asked_ = 0;
};

#pragma GCC diagnostic pop

// Presses the mouse's button at a place of the screen, which has to be in a window of this thread,
// drags the data through the places and lets go at the last. DRAGDROP_S_DROP if the drag has gone
// that way, whatever the window there made of it.
HRESULT dragWithMouse(FileList& data, POINT from, std::vector<POINT> through);

}  // namespace Vantrel::StandIn
