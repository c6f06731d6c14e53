// Base of the test cases that drop files on the element: the data of such a drag, two files and a
// folder to drop, and what the page finds out afterwards.
#pragma once

#include <windows.h>
#include <ole2.h>
#include <shlobj.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/plugin/view_fixture.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

using ov::TempFolder;

// The platform's interfaces have no virtual destructor.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// The data of a drag: a list of files.
class FileList : public IDataObject {
 public:
  explicit FileList(const std::vector<std::wstring>& paths) {
    for (const std::wstring& path : paths) names_ += path + L'\0';
    names_ += L'\0';
  }
  virtual ~FileList() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == IID_IUnknown || id == IID_IDataObject;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
    ++asked;
    if (names_.size() == 1) return DV_E_FORMATETC;
    EXPECT_EQ(format->cfFormat, CF_HDROP);
    const size_t bytes = names_.size() * sizeof(wchar_t);
    medium->tymed = TYMED_HGLOBAL;
    medium->hGlobal = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
    medium->pUnkForRelease = nullptr;
    auto* const files = static_cast<DROPFILES*>(GlobalLock(medium->hGlobal));
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    std::memcpy(files + 1, names_.data(), bytes);
    GlobalUnlock(medium->hGlobal);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC*) override { return S_OK; }
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

  int asked = 0;

 private:
  std::wstring names_;
};

#pragma GCC diagnostic pop

class DropTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    for (const char* const name : {"a.txt", "ö.txt"})
      TempFolder::write(folder_.path(name), "Hello");
    std::filesystem::create_directory(TempFolder::native(folder_.path("sub")));
  }

  std::string path(const std::string& name) const {
    std::string text = folder_.path(name);
    for (char& byte : text) byte = byte == '/' ? '\\' : byte;
    return text;
  }
  static std::string doubled(std::string text) {
    for (size_t at = 0; (at = text.find('\\', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }
  IDropTarget& target() const {
    return *static_cast<IDropTarget*>(GetPropW(child_, L"OleDropTargetInterface"));
  }
  std::string quoted(const std::string& name) const { return "\"" + doubled(path(name)) + "\""; }
  HRESULT drop(std::initializer_list<const char*> names) {
    std::vector<std::wstring> paths;
    for (const char* const name : names) paths.push_back(toWide(path(name)));
    FileList list(paths);
    DWORD effect = DROPEFFECT_COPY;
    const HRESULT result = target().Drop(&list, 0, {}, &effect);
    asked_ = list.asked;
    return result;
  }
  bool isApproved(Instance& instance, const std::string& name) {
    return instance.call("readAsArrayBuffer", {text(path(name))}).value.text.rfind("data:", 0) == 0;
  }

  TempFolder folder_;
  int asked_ = 0;
};

}  // namespace Vantrel::Web
