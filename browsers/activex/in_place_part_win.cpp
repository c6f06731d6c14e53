#include "browsers/activex/in_place_part_win.h"

#include <mutex>
#include <utility>

#include "browsers/activex/module_resources_win.h"
#include "browsers/activex/ole_control_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr wchar_t kWindowClass[] = L"OrvaneWebControl";
constexpr DWORD kWindowStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;

// The windows of all apartments are of one class, which goes with the last of them, as the library
// may be unloaded then.
std::mutex classMutex;  // guards the count, and is held while the class is made or taken away
int classUsers = 0;

bool takeWindowClass(WNDPROC procedure) {
  const std::lock_guard<std::mutex> lock(classMutex);
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = moduleInstance();
  windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  windowClass.lpszClassName = kWindowClass;
  if (classUsers == 0 && RegisterClassExW(&windowClass) == 0 &&
      GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    return false;
  }
  ++classUsers;
  return true;
}

void giveWindowClassBack() {
  const std::lock_guard<std::mutex> lock(classMutex);
  if (--classUsers == 0) UnregisterClassW(kWindowClass, moduleInstance());
}

// Holds the class for a scope.
class ClassUse {
 public:
  explicit ClassUse(WNDPROC procedure) : taken_(takeWindowClass(procedure)) {}
  ~ClassUse() {
    if (taken_) giveWindowClassBack();
  }
  ClassUse(const ClassUse&) = delete;
  ClassUse& operator=(const ClassUse&) = delete;

 private:
  const bool taken_;
};

int widthOf(const RECT& rect) {
  return rect.right - rect.left;
}

int heightOf(const RECT& rect) {
  return rect.bottom - rect.top;
}

}  // namespace

InPlacePart::~InPlacePart() {
  closeWindow();
}

HRESULT InPlacePart::activate(bool forUser) {
  IOleClientSite* const site = control().object().site();
  if (site == nullptr) return E_UNEXPECTED;
  if (state_ == State::kPassive) {
    const ComPointer<IOleClientSite> held(site);
    const HRESULT result = enter(*held.get());
    if (FAILED(result)) {
      deactivate();
      return result;
    }
    held->ShowObject();
  }
  if (window_ != nullptr) ShowWindow(window_, SW_SHOW);
  // The site may have deactivated the control meanwhile.
  if (forUser && state_ == State::kShown) takeKeyboard();
  return S_OK;
}

// Becomes active in the site, which decides whether the control has a window. The site may take it
// all back inside each of these calls; what this one needs it holds itself.
HRESULT InPlacePart::enter(IOleClientSite& clientSite) {
  ComPointer<IOleInPlaceSite> site;
  const HRESULT offered = clientSite.QueryInterface(IID_IOleInPlaceSite, site.putVoid());
  if (FAILED(offered)) return offered;
  if (site->CanInPlaceActivate() != S_OK) return E_FAIL;
  const HRESULT announced = announce(*site.get());
  if (FAILED(announced)) return announced;
  HWND parent = nullptr;
  const HRESULT found = site->GetWindow(&parent);
  if (FAILED(found)) return found;
  ComPointer<IOleInPlaceFrame> frame;
  ComPointer<IOleInPlaceUIWindow> document;
  RECT place = {};
  RECT clip = {};
  OLEINPLACEFRAMEINFO info = {};
  info.cb = sizeof info;
  const HRESULT told = site->GetWindowContext(frame.put(), document.put(), &place, &clip, &info);
  if (FAILED(told)) return told;
  // With a window it was not only taken back, but activated once more.
  if (state_ == State::kPassive || window_ != nullptr) return E_ABORT;
  around_[0] = ComPointer<IOleInPlaceUIWindow>(frame.get());
  around_[1] = std::move(document);
  place_ = place;
  return windowless_ ? S_OK : openWindow(parent);
}

HRESULT InPlacePart::announce(IOleInPlaceSite& site) {
  ComPointer<IOleInPlaceSiteEx> siteEx;
  ComPointer<IOleInPlaceSiteWindowless> siteNoWindow;
  site.QueryInterface(IID_IOleInPlaceSiteEx, siteEx.putVoid());
  site.QueryInterface(IID_IOleInPlaceSiteWindowless, siteNoWindow.putVoid());
  const bool windowless = siteEx && siteNoWindow && siteNoWindow->CanWindowlessActivate() == S_OK;
  state_ = State::kShown;
  windowless_ = windowless;
  site_ = ComPointer<IOleInPlaceSite>(&site);
  siteEx_ = ComPointer<IOleInPlaceSiteEx>(siteEx.get());
  if (windowless) siteNoWindow_ = ComPointer<IOleInPlaceSiteWindowless>(siteNoWindow.get());
  WINBOOL noRedraw = FALSE;
  const HRESULT result =
      siteEx ? siteEx->OnInPlaceActivateEx(&noRedraw, windowless ? ACTIVATE_WINDOWLESS : 0)
             : site.OnInPlaceActivate();
  // A site that does not take the control hears nothing of its end.
  if (FAILED(result)) state_ = State::kPassive;
  return result;
}

// The container's window hears of the new one while that is made, and the container may take all
// back then. The window has gone in that case, and its class is not to go before.
HRESULT InPlacePart::openWindow(HWND parent) {
  const ClassUse whileMade(windowProc);
  ownsClass_ = takeWindowClass(windowProc);
  CREATESTRUCTW create = {};
  create.lpCreateParams = this;
  create.hInstance = moduleInstance();
  create.hwndParent = parent;
  create.x = place_.left;
  create.y = place_.top;
  create.cx = widthOf(place_);
  create.cy = heightOf(place_);
  create.style = static_cast<LONG>(kWindowStyle);
  create.lpszClass = kWindowClass;
  control().onCreate(create);
  const HWND made = CreateWindowExW(
      create.dwExStyle, create.lpszClass, L"", static_cast<DWORD>(create.style), create.x, create.y,
      create.cx, create.cy, create.hwndParent, nullptr, create.hInstance, create.lpCreateParams);
  if (state_ == State::kPassive) return E_ABORT;
  if (made == nullptr || made != window_) return E_FAIL;
  // Without a window of its own, the container asks for the target instead. The system holds a
  // reference until the window takes it back.
  IDropTarget* const target = control().dropTarget();
  if (target != nullptr) RegisterDragDrop(window_, target);
  return S_OK;
}

void InPlacePart::closeWindow() {
  if (const HWND window = std::exchange(window_, nullptr); window != nullptr) {
    RevokeDragDrop(window);
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    DestroyWindow(window);
  }
  if (std::exchange(ownsClass_, false)) giveWindowClassBack();
}

void InPlacePart::takeKeyboard() {
  state_ = State::kForUser;
  const ComPointer<IOleInPlaceSite> site(site_.get());
  const ComPointer<IOleInPlaceSiteWindowless> siteNoWindow(siteNoWindow_.get());
  const WindowsAround around = windowsAround();
  site->OnUIActivate();
  if (window_ != nullptr) SetFocus(window_);
  if (siteNoWindow) siteNoWindow->SetFocus(TRUE);
  // The container may take it back in each of these.
  for (const auto& window : around) {
    if (window && state_ == State::kForUser) window->SetActiveObject(this, nullptr);
  }
  for (const auto& window : around) {
    if (window && state_ == State::kForUser) window->SetBorderSpace(nullptr);
  }
}

InPlacePart::WindowsAround InPlacePart::windowsAround() const {
  return {ComPointer<IOleInPlaceUIWindow>(around_[0].get()),
          ComPointer<IOleInPlaceUIWindow>(around_[1].get())};
}

HRESULT STDMETHODCALLTYPE InPlacePart::UIDeactivate() {
  return entered(E_FAIL, [this] {
    if (state_ != State::kForUser) return S_OK;
    state_ = State::kShown;
    const ComPointer<IOleInPlaceSite> site(site_.get());
    for (const auto& window : windowsAround()) {
      if (window) window->SetActiveObject(nullptr, nullptr);
    }
    site->OnUIDeactivate(FALSE);
    return S_OK;
  });
}

void InPlacePart::deactivate() {
  UIDeactivate();
  const ComPointer<IOleInPlaceSite> site = std::move(site_);
  const ComPointer<IOleInPlaceSiteEx> siteEx = std::move(siteEx_);
  siteNoWindow_.reset();
  for (auto& window : around_) window.reset();
  closeWindow();
  const bool wasActive = std::exchange(state_, State::kPassive) != State::kPassive;
  windowless_ = false;
  if (!wasActive) return;
  if (siteEx) {
    siteEx->OnInPlaceDeactivateEx(FALSE);
  } else {
    site->OnInPlaceDeactivate();
  }
}

void InPlacePart::hide() {
  UIDeactivate();
  if (window_ != nullptr) ShowWindow(window_, SW_HIDE);
}

void InPlacePart::invalidate() {
  if (window_ != nullptr) InvalidateRect(window_, nullptr, TRUE);
  if (siteNoWindow_) siteNoWindow_->InvalidateRect(nullptr, TRUE);
}

HRESULT STDMETHODCALLTYPE InPlacePart::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = window_;
  return window_ != nullptr ? S_OK : E_FAIL;
}

HRESULT STDMETHODCALLTYPE InPlacePart::InPlaceDeactivate() {
  return entered(E_FAIL, [this] {
    deactivate();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE InPlacePart::SetObjectRects(LPCRECT place, LPCRECT clip) {
  if (place == nullptr) return E_INVALIDARG;
  place_ = *place;
  if (window_ == nullptr) return S_OK;
  RECT seen = *place;
  if (clip != nullptr && IntersectRect(&seen, place, clip) != FALSE &&
      EqualRect(&seen, place) == FALSE) {
    OffsetRect(&seen, -place->left, -place->top);
    SetWindowRgn(window_, CreateRectRgnIndirect(&seen), TRUE);
  } else {
    SetWindowRgn(window_, nullptr, TRUE);
  }
  MoveWindow(window_, place->left, place->top, widthOf(*place), heightOf(*place), TRUE);
  return S_OK;
}

// The control takes nothing but drags, which come another way.
HRESULT STDMETHODCALLTYPE InPlacePart::OnWindowMessage(UINT, WPARAM, LPARAM, LRESULT* result) {
  if (result != nullptr) *result = 0;
  return S_FALSE;
}

HRESULT STDMETHODCALLTYPE InPlacePart::GetDropTarget(IDropTarget** target) {
  if (target == nullptr) return E_POINTER;
  *target = control().dropTarget();
  if (*target == nullptr) return E_NOTIMPL;
  (*target)->AddRef();
  return S_OK;
}

void InPlacePart::paint() {
  PAINTSTRUCT paint = {};
  const HDC dc = BeginPaint(window_, &paint);
  RECT bounds = {};
  GetClientRect(window_, &bounds);
  guarded([&] { control().onDraw(dc, bounds); });
  EndPaint(window_, &paint);
}

LRESULT CALLBACK InPlacePart::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* const create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    // Known before anybody hears of it, and may take the control's activation back.
    static_cast<InPlacePart*>(create->lpCreateParams)->window_ = window;
  }
  // None once the control has let go of the window.
  auto* const part = reinterpret_cast<InPlacePart*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (part == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  if (message == WM_PAINT && part->window_ != nullptr) {
    part->paint();
    return 0;
  }
  // The container's window goes with all in it. The system does not give the target back by itself.
  if (message == WM_DESTROY) RevokeDragDrop(window);
  if (message == WM_NCDESTROY) {
    part->window_ = nullptr;
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace Vantrel::Web::ActiveX
