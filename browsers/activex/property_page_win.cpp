#include "browsers/activex/property_page_win.h"

#include <new>
#include <string>

#include "browsers/activex/class_objects_win.h"
#include "browsers/activex/module_resources_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

HRESULT lastError() {
  const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
  return FAILED(result) ? result : E_FAIL;
}

HWND makeDialog(HWND parent, DLGPROC procedure, LPARAM argument) {
  return CreateDialogParamW(moduleInstance(), MAKEINTRESOURCEW(kPageResource), parent, procedure,
                            argument);
}

INT_PTR CALLBACK measuredProc(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

// The dialog's units become points only in a window. Where no top-level window may be made, a
// message window still holds one.
HRESULT measure(SIZE& size) {
  const HWND dialog = makeDialog(HWND_MESSAGE, measuredProc, 0);
  if (dialog == nullptr) return lastError();
  RECT rect = {};
  GetWindowRect(dialog, &rect);
  DestroyWindow(dialog);
  size = {rect.right - rect.left, rect.bottom - rect.top};
  return S_OK;
}

// A copy that the caller frees.
LPOLESTR taskText(const std::wstring& text) {
  const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  auto* const copy = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
  if (copy != nullptr) text.copy(copy, text.size());
  if (copy != nullptr) copy[text.size()] = L'\0';
  return copy;
}

}  // namespace

COrvaneWebPropPage::~COrvaneWebPropPage() {
  if (window_ != nullptr) DestroyWindow(window_);
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::SetPageSite(IPropertyPageSite* site) {
  if (site != nullptr && site_) return E_UNEXPECTED;
  site_.reset();
  if (site == nullptr) return S_OK;
  site->AddRef();
  *site_.put() = site;
  return S_OK;
}

// Hidden until the frame shows it.
HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::Activate(HWND parent, LPCRECT rect, WINBOOL) {
  if (rect == nullptr) return E_POINTER;
  if (window_ != nullptr) return E_UNEXPECTED;
  window_ = makeDialog(parent, dialogProc, reinterpret_cast<LPARAM>(this));
  return window_ != nullptr ? Move(rect) : lastError();
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::Deactivate() {
  if (window_ == nullptr) return E_UNEXPECTED;
  DestroyWindow(window_);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::GetPageInfo(PROPPAGEINFO* info) {
  if (info == nullptr) return E_POINTER;
  info->pszTitle = nullptr;
  info->pszDocString = nullptr;
  info->pszHelpFile = nullptr;
  info->dwHelpContext = 0;
  const HRESULT result = measure(info->size);
  if (FAILED(result)) return result;
  return guarded<HRESULT>(E_OUTOFMEMORY, [info] {
    info->pszTitle = taskText(moduleText(kPageResource));
    return info->pszTitle != nullptr ? S_OK : E_OUTOFMEMORY;
  });
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::SetObjects(ULONG count, IUnknown** objects) {
  return count != 0 && objects == nullptr ? E_POINTER : S_OK;
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::Show(UINT command) {
  if (command != SW_SHOW && command != SW_SHOWNORMAL && command != SW_HIDE) return E_INVALIDARG;
  if (window_ == nullptr) return E_UNEXPECTED;
  ShowWindow(window_, static_cast<int>(command));
  return S_OK;
}

HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::Move(LPCRECT rect) {
  if (rect == nullptr) return E_POINTER;
  if (window_ == nullptr) return E_UNEXPECTED;
  SetWindowPos(window_, nullptr, rect->left, rect->top, rect->right - rect->left,
               rect->bottom - rect->top, SWP_NOZORDER | SWP_NOACTIVATE);
  return S_OK;
}

// Nothing on the page takes a key; all are the frame's.
HRESULT STDMETHODCALLTYPE COrvaneWebPropPage::TranslateAccelerator(MSG* message) {
  return message != nullptr ? S_FALSE : E_POINTER;
}

// A frame that destroys its windows without a word takes the dialog with them.
INT_PTR CALLBACK COrvaneWebPropPage::dialogProc(HWND dialog, UINT message, WPARAM, LPARAM lParam) {
  if (message == WM_INITDIALOG) SetWindowLongPtrW(dialog, DWLP_USER, lParam);
  if (message == WM_NCDESTROY) {
    auto* const page = reinterpret_cast<COrvaneWebPropPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (page != nullptr) page->window_ = nullptr;
  }
  return FALSE;
}

HRESULT createPropertyPage(IUnknown* outer, REFIID id, void** object) {
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  auto* const page = new (std::nothrow) COrvaneWebPropPage;
  if (page == nullptr) return E_OUTOFMEMORY;
  const HRESULT result = page->QueryInterface(id, object);
  page->Release();
  return result;
}

}  // namespace Vantrel::Web::ActiveX
