#include "tests/support/fake_file_dialogs_win.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <utility>

#include "tests/support/counted_interface_win.h"
#include "text/wide_text.h"

// The platform's interfaces have no virtual destructor; objects end in Release, which knows them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace Vantrel::Web::TestSupport {

namespace {

FakeFileDialogs* current = nullptr;

template <class Interface>
class Counted : public CountedInterface<Interface> {
 public:
  Counted() : CountedInterface<Interface>(__uuidof(Interface), current->living) {}
};

class Item : public Counted<IShellItem> {
 public:
  explicit Item(std::wstring path) : path_(std::move(path)) {}
  HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetParent(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetDisplayName(SIGDN form, LPWSTR* name) override {
    const HRESULT result = current->note("GetDisplayName", std::to_string(unsigned(form)));
    if (FAILED(result)) return result;
    const size_t bytes = (path_.size() + 1) * sizeof(wchar_t);
    *name = static_cast<LPWSTR>(CoTaskMemAlloc(bytes));
    std::wmemcpy(*name, path_.c_str(), path_.size() + 1);
    return result;
  }
  HRESULT STDMETHODCALLTYPE GetAttributes(SFGAOF, SFGAOF*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Compare(IShellItem*, SICHINTF, int*) override { return E_NOTIMPL; }

 private:
  const std::wstring path_;
};

class Items : public Counted<IShellItemArray> {
 public:
  HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetPropertyStore(GETPROPERTYSTOREFLAGS, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetPropertyDescriptionList(REFPROPERTYKEY, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetAttributes(SIATTRIBFLAGS, SFGAOF, SFGAOF*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override {
    *count = static_cast<DWORD>(current->chosen.size());
    return current->note("GetCount");
  }
  HRESULT STDMETHODCALLTYPE GetItemAt(DWORD index, IShellItem** item) override {
    const HRESULT result = current->note("GetItemAt", std::to_string(index));
    if (SUCCEEDED(result)) *item = new Item(current->chosen.at(index));
    return result;
  }
  HRESULT STDMETHODCALLTYPE EnumItems(IEnumShellItems**) override { return E_NOTIMPL; }
};

// What the two dialogs share.
template <class Interface>
class Dialog : public Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE Show(HWND owner) override {
    current->owner = owner;
    current->watchedEnabled = IsWindowEnabled(current->watched) != FALSE;
    const HRESULT result = current->note("Show");
    // The hook may show a dialog too, with a hook of its own.
    if (const auto hook = std::exchange(current->onShow, nullptr)) hook();
    return result;
  }
  HRESULT STDMETHODCALLTYPE SetFileTypes(UINT count, const COMDLG_FILTERSPEC* specs) override {
    std::string text;
    for (UINT i = 0; i < count; ++i) {
      text += (i == 0 ? "" : ", ") + toUtf8(specs[i].pszName) + "|" + toUtf8(specs[i].pszSpec);
    }
    return current->note("SetFileTypes", text);
  }
  HRESULT STDMETHODCALLTYPE SetFileTypeIndex(UINT index) override {
    return current->note("SetFileTypeIndex", std::to_string(index));
  }
  HRESULT STDMETHODCALLTYPE GetFileTypeIndex(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Advise(IFileDialogEvents*, DWORD*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetOptions(FILEOPENDIALOGOPTIONS options) override {
    return current->note("SetOptions", std::to_string(options));
  }
  HRESULT STDMETHODCALLTYPE GetOptions(FILEOPENDIALOGOPTIONS* options) override {
    *options = current->options;
    return current->note("GetOptions");
  }
  HRESULT STDMETHODCALLTYPE SetDefaultFolder(IShellItem*) override {
    return current->note("SetDefaultFolder");
  }
  HRESULT STDMETHODCALLTYPE SetFolder(IShellItem*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetFolder(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCurrentSelection(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR name) override {
    return current->note("SetFileName", toUtf8(name));
  }
  HRESULT STDMETHODCALLTYPE GetFileName(LPWSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetTitle(LPCWSTR title) override {
    return current->note("SetTitle", toUtf8(title));
  }
  HRESULT STDMETHODCALLTYPE SetOkButtonLabel(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFileNameLabel(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetResult(IShellItem** item) override {
    const HRESULT result = current->note("GetResult");
    if (SUCCEEDED(result)) *item = new Item(current->chosen.at(0));
    return result;
  }
  HRESULT STDMETHODCALLTYPE AddPlace(IShellItem*, FDAP) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetDefaultExtension(LPCWSTR extension) override {
    return current->note("SetDefaultExtension", toUtf8(extension));
  }
  HRESULT STDMETHODCALLTYPE Close(HRESULT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetClientGuid(REFGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ClearClientData() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFilter(IShellItemFilter*) override { return E_NOTIMPL; }
};

class OpenDialog : public Dialog<IFileOpenDialog> {
 public:
  HRESULT STDMETHODCALLTYPE GetResults(IShellItemArray** items) override {
    const HRESULT result = current->note("GetResults");
    if (SUCCEEDED(result)) *items = new Items;
    return result;
  }
  HRESULT STDMETHODCALLTYPE GetSelectedItems(IShellItemArray**) override { return E_NOTIMPL; }
};

class SaveDialog : public Dialog<IFileSaveDialog> {
 public:
  HRESULT STDMETHODCALLTYPE SetSaveAsItem(IShellItem*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetProperties(IPropertyStore*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetCollectedProperties(IPropertyDescriptionList*, WINBOOL) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetProperties(IPropertyStore**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ApplyProperties(IShellItem*, IPropertyStore*, HWND,
                                            IFileOperationProgressSink*) override {
    return E_NOTIMPL;
  }
};

template <class Object>
class Factory : public Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    const HRESULT result = current->note("CoCreateInstance");
    if (FAILED(result)) return result;
    auto* const made = new Object;
    const HRESULT found = made->QueryInterface(id, object);
    made->Release();
    return found;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

template <class Object>
DWORD registerFactory(REFCLSID id) {
  auto* const factory = new Factory<Object>;
  DWORD cookie = 0;
  EXPECT_EQ(CoRegisterClassObject(id, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  factory->Release();
  return cookie;
}

}  // namespace

FakeFileDialogs::FakeFileDialogs() {
  current = this;
  EXPECT_GE(CoInitialize(nullptr), 0);
  open_ = registerFactory<OpenDialog>(CLSID_FileOpenDialog);
  save_ = registerFactory<SaveDialog>(CLSID_FileSaveDialog);
}

FakeFileDialogs::~FakeFileDialogs() {
  CoRevokeClassObject(open_);
  CoRevokeClassObject(save_);
  CoUninitialize();
  EXPECT_EQ(living, 0);
  current = nullptr;
}

HRESULT FakeFileDialogs::note(const std::string& name, const std::string& arguments) {
  calls.push_back(arguments.empty() ? name : name + " " + arguments);
  if (fails && fails(name)) return E_OUTOFMEMORY;
  const auto found = results.find(name);
  return found == results.end() ? S_OK : found->second;
}

}  // namespace Vantrel::Web::TestSupport
