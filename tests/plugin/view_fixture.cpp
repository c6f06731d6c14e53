#include "tests/plugin/view_fixture.h"

#include <ole2.h>

// The platform's interfaces have no virtual destructor.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace Vantrel::Web {
namespace {

LRESULT CALLBACK greenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_ERASEBKGND && message != WM_PAINT) {
    return DefWindowProcW(window, message, wParam, lParam);
  }
  const HDC dc = GetDC(window);
  RECT rect = {};
  GetClientRect(window, &rect);
  const HBRUSH brush = CreateSolidBrush(kBehind);
  FillRect(dc, &rect, brush);
  DeleteObject(brush);
  ReleaseDC(window, dc);
  ValidateRect(window, nullptr);
  return 1;
}

class NoTarget : public IDropTarget {
 public:
  virtual ~NoTarget() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject*, DWORD, POINTL, DWORD*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Drop(IDataObject*, DWORD, POINTL, DWORD*) override { return S_OK; }
};

// The first target of a process makes the platform start a thread that stays, so there is one
// before the host counts.
void registerOne() {
  static NoTarget target;
  ASSERT_GE(OleInitialize(nullptr), 0);
  const HWND window =
      CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(RegisterDragDrop(window, &target), S_OK);
  EXPECT_EQ(RevokeDragDrop(window), S_OK);
  DestroyWindow(window);
  OleUninitialize();
}

}  // namespace

void ViewTest::SetUp() {
  registerOne();
  PluginTest::SetUp();
  WNDCLASSW green = {};
  green.lpfnWndProc = greenProc;
  green.lpszClassName = L"ViewTestWindow";
  green.hInstance = GetModuleHandleW(nullptr);
  RegisterClassW(&green);
  top_ = CreateWindowExW(0, L"ViewTestWindow", L"", WS_POPUP | WS_VISIBLE, 0, 0, 200, 200, nullptr,
                         nullptr, nullptr, nullptr);
  child_ = CreateWindowExW(0, L"ViewTestWindow", L"", WS_CHILD | WS_VISIBLE, 10, 10, kSize, kSize,
                           top_, nullptr, nullptr, nullptr);
  UpdateWindow(top_);
  UpdateWindow(child_);
}

}  // namespace Vantrel::Web
