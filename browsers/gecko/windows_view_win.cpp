#include "browsers/gecko/windows_view_win.h"

#include <ole2.h>

#include <exception>
#include <utility>

#include "browsers/shared/dropped_files_win.h"
#include "core/approved_files.h"
#include "core/data_transfer.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"

namespace Vantrel::Web::Gecko {

namespace {

// What a window that is subclassed knows its view by; its user data could be another's.
constexpr wchar_t kViewProperty[] = L"OrvaneWebView";

constexpr char kChrome[] = "chrome";

// A device context of a window.
class WindowContext {
 public:
  explicit WindowContext(HWND window) : window_(window), dc_(GetDC(window)) {}
  ~WindowContext() { ReleaseDC(window_, dc_); }
  WindowContext(const WindowContext&) = delete;
  WindowContext& operator=(const WindowContext&) = delete;
  HDC get() const { return dc_; }

 private:
  const HWND window_;
  const HDC dc_;
};

// A device context of a window that is to be painted.
class PaintContext {
 public:
  explicit PaintContext(HWND window) : window_(window) { BeginPaint(window_, &paint_); }
  ~PaintContext() { EndPaint(window_, &paint_); }
  PaintContext(const PaintContext&) = delete;
  PaintContext& operator=(const PaintContext&) = delete;
  HDC get() const { return paint_.hdc; }

 private:
  const HWND window_;
  PAINTSTRUCT paint_ = {};
};

// A device context in memory, with a bitmap selected.
class MemoryContext {
 public:
  MemoryContext(HDC like, HBITMAP bitmap)
      : dc_(CreateCompatibleDC(like)), former_(SelectObject(dc_, bitmap)) {}
  ~MemoryContext() {
    SelectObject(dc_, former_);
    DeleteDC(dc_);
  }
  MemoryContext(const MemoryContext&) = delete;
  MemoryContext& operator=(const MemoryContext&) = delete;
  HDC get() const { return dc_; }

 private:
  const HDC dc_;
  const HGDIOBJ former_;
};

HWND topLevelOf(HWND window) {
  HWND top = window;
  while ((GetWindowLongW(top, GWL_STYLE) & WS_CHILD) != 0 && GetParent(top) != nullptr) {
    top = GetParent(top);
  }
  return top;
}

}  // namespace

ovWindowsOrvaneWebViewImpl::~ovWindowsOrvaneWebViewImpl() {
  releaseWindow();
  if (background_ != nullptr) DeleteObject(background_);
}

bool ovWindowsOrvaneWebViewImpl::init(NPWindow* window, NPP, bool dropEnabled,
                                      bool allowDirectories, bool allowMultiple) {
  pluginWindow_ = static_cast<HWND>(window->window);
  OV_DEBUG("ovWindowsOrvaneWebViewImpl::init() - hwnd=%x",
           static_cast<unsigned>(reinterpret_cast<uintptr_t>(pluginWindow_)));
  if (pluginWindow_ == nullptr) return false;
  subclass();
  dropTarget_.reset(new OrvaneWebIDropTarget(this));
  if (const HRESULT result = RegisterDragDrop(pluginWindow_, dropTarget_.get()); FAILED(result)) {
    ov_err("ovWindowsOrvaneWebViewImpl::init - RegisterDragDrop failed: %x,",
           static_cast<unsigned>(result));
    dropTarget_.reset();
  }
  SetWindowLongPtrW(pluginWindow_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  dropEnabled_ = dropEnabled;
  dropAllowDirectories_ = allowDirectories;
  dropAllowMultiple_ = allowMultiple;
  return true;
}

void ovWindowsOrvaneWebViewImpl::subclass() {
  // A window that another instance has had, and still has, is the latest one's: two views on one
  // window would take each other for the procedure to go on with.
  if (auto* const other = viewOf(pluginWindow_); other != nullptr) other->releaseWindow();
  // Our procedure would find nobody.
  if (SetPropW(pluginWindow_, kViewProperty, this) == FALSE) return;
  formerProc_ = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(pluginWindow_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(windowProc)));
}

// Also where the window goes first. A subclass that came later is dropped with ours: what it calls
// is the code of a library that may be unloaded.
void ovWindowsOrvaneWebViewImpl::releaseWindow() {
  if (pluginWindow_ == nullptr) return;
  if (dropTarget_) RevokeDragDrop(pluginWindow_);
  dropTarget_.reset();
  RemovePropW(pluginWindow_, kViewProperty);
  // Null when ours never came in. Wine takes no notice of it; Windows would call it.
  if (formerProc_ != nullptr) {
    SetWindowLongPtrW(pluginWindow_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(formerProc_));
  }
  if (GetWindowLongPtrW(pluginWindow_, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(this)) {
    SetWindowLongPtrW(pluginWindow_, GWLP_USERDATA, 0);
  }
  pluginWindow_ = nullptr;
}

ovWindowsOrvaneWebViewImpl* ovWindowsOrvaneWebViewImpl::viewOf(HWND window) {
  return static_cast<ovWindowsOrvaneWebViewImpl*>(GetPropW(window, kViewProperty));
}

LRESULT CALLBACK ovWindowsOrvaneWebViewImpl::windowProc(HWND window, UINT message, WPARAM wParam,
                                                        LPARAM lParam) {
  auto* const view = viewOf(window);
  if (view == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  const WNDPROC former = view->formerProc_;
  switch (message) {
    case WM_PAINT:
      return guarded<LRESULT>(0, [view, message] { return view->onPaint(message); });
    case WM_ERASEBKGND:
      guarded([view, wParam] {
        if (view->transparent_) view->displayImage(reinterpret_cast<HDC>(wParam));
      });
      return 1;
    case WM_DESTROY:
      // While the window still has its drop target.
      guarded([view] { view->releaseWindow(); });
      break;
    default:
      break;
  }
  return CallWindowProcW(former, window, message, wParam, lParam);
}

void ovWindowsOrvaneWebViewImpl::setImage(const unsigned char* data, uint32_t length) {
  OV_DEBUG("ovWindowsOrvaneWebViewImpl::setImage() - length=%u", length);
  if (length == 0) return;
  auto picture = Picture::of(data, length);
  if (!picture) return;
  image_ = std::move(picture);
  repaint();
}

void ovWindowsOrvaneWebViewImpl::markSession(bool) {
  backgroundReady_ = true;
  repaint();
}

// Not without a window: the system would paint all windows of the desktop again.
void ovWindowsOrvaneWebViewImpl::repaint() const {
  if (pluginWindow_ != nullptr) InvalidateRect(pluginWindow_, nullptr, FALSE);
}

void ovWindowsOrvaneWebViewImpl::updateWindow(NPWindow* window) {
  if (!transparent_) return;
  ov_log("capture parent window::");
  const RECT rect = {window->x, window->y, window->x + static_cast<LONG>(window->width),
                     window->y + static_cast<LONG>(window->height)};
  captureBackground(rect);
  backgroundReady_ = true;
}

void ovWindowsOrvaneWebViewImpl::captureBackground(RECT rect) {
  if (!transparent_ || pluginWindow_ == nullptr) return;
  const HWND top = topLevelOf(pluginWindow_);
  const bool chrome = browserHost_ == kChrome;
  if (chrome) {
    // There the window would be in its own picture.
    ShowWindow(pluginWindow_, SW_HIDE);
    POINT corners[] = {{rect.left, rect.top}, {rect.right, rect.bottom}};
    if (ClientToScreen(pluginWindow_, &corners[0]) && ClientToScreen(pluginWindow_, &corners[1])) {
      ScreenToClient(top, &corners[0]);
      ScreenToClient(top, &corners[1]);
      rect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
    }
  }
  {
    const WindowContext source(top);
    if (background_ != nullptr) DeleteObject(background_);
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    background_ = CreateCompatibleBitmap(source.get(), width, height);
    if (background_ != nullptr) {
      const MemoryContext target(source.get(), background_);
      BitBlt(target.get(), 0, 0, width, height, source.get(), rect.left, rect.top, SRCCOPY);
    }
  }
  if (chrome) ShowWindow(pluginWindow_, SW_SHOW);
}

void ovWindowsOrvaneWebViewImpl::displayImage(HDC dc) const {
  ov_log("display image");
  if (background_ == nullptr) return;
  ov_log("display image_start");
  RECT rect = {};
  GetWindowRect(pluginWindow_, &rect);
  const MemoryContext source(dc, background_);
  BitBlt(dc, 0, 0, rect.right - rect.left, rect.bottom - rect.top, source.get(), 0, 0, SRCCOPY);
}

LRESULT ovWindowsOrvaneWebViewImpl::onPaint(UINT message) {
  OV_DEBUG("ovWindowsOrvaneWebViewImpl::onPaint() - MSG=%x", message);
  const PaintContext paint(pluginWindow_);
  const HDC dc = paint.get();
  RECT rect = {};
  GetClientRect(pluginWindow_, &rect);
  LRESULT result = 0;
  if (image_) {
    image_->draw(dc, rect);
    result = 1;
  } else if (!transparent_) {
    FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  } else if (backgroundReady_) {
    displayImage(dc);
    result = 1;
  }
  return result;
}

void ovWindowsOrvaneWebViewImpl::dragOver() {
  if (delegate_ != nullptr) delegate_->doDragOver();
}

void ovWindowsOrvaneWebViewImpl::dragLeave() {
  if (delegate_ != nullptr) delegate_->doDragLeave();
}

HRESULT ovWindowsOrvaneWebViewImpl::drop(IDataObject* data, const DWORD* effect) {
  if (data == nullptr || effect == nullptr) return E_INVALIDARG;
  if (!dropEnabled_) return S_OK;
  OrvaneWebIDropTarget& target = *dropTarget_;
  // Where another process drags, this is a call to it, which lets windows work; one may end this.
  const DroppedData dropped(*data);
  if (target.receiver() != this) return S_OK;
  if (FAILED(dropped.result())) return E_INVALIDARG;
  std::vector<std::string> files =
      acceptedFiles(dropped.files(), dropAllowDirectories_, dropAllowMultiple_);
  if (!files.empty() && delegate_ != nullptr) tellDrop(target, std::move(files));
  return S_OK;
}

// What the page does with the first call may end the view, which its drop target then tells.
void ovWindowsOrvaneWebViewImpl::tellDrop(const OrvaneWebIDropTarget& target,
                                          std::vector<std::string> files) {
  addToApprovedFileList(files);
  std::string json = dataTransferJson(files);
  delegate_->doDrop(files);
  if (target.receiver() != nullptr) delegate_->doDropex(json);
}

std::unique_ptr<ovIOrvaneWebViewImpl> newOrvaneWebViewImpl() {
  return std::make_unique<ovWindowsOrvaneWebViewImpl>();
}

}  // namespace Vantrel::Web::Gecko
