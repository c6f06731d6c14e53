// A page or a container that takes the activation back, or asks for it once more, at each step of
// it: no window and no hold on the window's class is left.
#include <gtest/gtest.h>

#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>

#include <functional>
#include <memory>
#include <utility>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

// A site that takes the activation back at a step of it.
class RestlessSite : public Container::Site {
 public:
  using Site::Site;

  std::function<void()> onActivate;
  std::function<void()> onContext;
  std::function<void()> onUi;

  STDMETHODIMP OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) override {
    const HRESULT result = Site::OnInPlaceActivateEx(noRedraw, flags);
    if (onActivate) onActivate();
    return result;
  }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                LPRECT place, LPRECT clip, LPOLEINPLACEFRAMEINFO info) override {
    const HRESULT result = Site::GetWindowContext(frame, document, place, clip, info);
    if (onContext) onContext();
    return result;
  }
  STDMETHODIMP OnUIActivate() override {
    const HRESULT result = Site::OnUIActivate();
    if (onUi) onUi();
    return result;
  }
};

// For a scope, a call for each message that tells the window that it has a new child.
class ChildWatch {
 public:
  ChildWatch(HWND window, std::function<void()> onChild)
      : window_(window),
        former_(reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)))) {
    onChild_ = std::move(onChild);
    current_ = former_;
  }
  ~ChildWatch() { SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former_)); }
  ChildWatch(const ChildWatch&) = delete;
  ChildWatch& operator=(const ChildWatch&) = delete;

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PARENTNOTIFY && LOWORD(wParam) == WM_CREATE) onChild_();
    return CallWindowProcW(current_, window, message, wParam, lParam);
  }

  static inline std::function<void()> onChild_;
  static inline WNDPROC current_ = nullptr;
  const HWND window_;
  const WNDPROC former_;
};

class WindowStepsTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    control_ = makeControl({.site = {.windowless = false}});
  }
  void TearDown() override {
    control_.reset();
    ControlTest::TearDown();
  }
  bool isClassKnown() {
    WNDCLASSEXW found = {};
    found.cbSize = sizeof found;
    return GetClassInfoExW(library().module(), L"OrvaneWebControl", &found) != FALSE;
  }
  void expectNothingLeft() {
    EXPECT_FALSE(control_->site().inPlaceActive);
    EXPECT_EQ(GetWindow(container().window(), GW_CHILD), nullptr);
    EXPECT_FALSE(isClassKnown());
  }

  std::unique_ptr<Control> control_;
};

TEST_F(WindowStepsTest, TheActivationMayBeTakenBackWhileTheWindowIsMade) {
  {
    const ChildWatch watch(container().window(),
                           [this] { EXPECT_EQ(control_->deactivate(), S_OK); });
    EXPECT_EQ(control_->activate(), E_ABORT);
  }
  expectNothingLeft();
  EXPECT_EQ(control_->activate(), S_OK);
  EXPECT_NE(GetWindow(container().window(), GW_CHILD), nullptr);
}

TEST_F(WindowStepsTest, AnActivationInsideAnotherLeavesNoSecondWindow) {
  bool again = true;
  {
    const ChildWatch watch(container().window(), [this, &again] {
      if (!std::exchange(again, false)) return;
      EXPECT_EQ(control_->deactivate(), S_OK);
      EXPECT_EQ(control_->activate(), S_OK);
    });
    EXPECT_TRUE(FAILED(control_->activate()));
  }
  expectNothingLeft();
}

class ActivationStepsTest : public ControlTest {};

TEST_F(ActivationStepsTest, AnActivationInsideAStepLeavesNoSecondWindow) {
  const auto control = makeControl();
  auto& site = container().book.make<RestlessSite>("restless", container().window(),
                                                   Container::SiteSettings{.windowless = false});
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  object->SetClientSite(&site);
  bool again = true;
  site.onContext = [&] {
    if (!std::exchange(again, false)) return;
    control->deactivate();
    EXPECT_EQ(control->activate(), S_OK);
  };
  EXPECT_EQ(control->activate(), E_ABORT);
  EXPECT_EQ(GetWindow(container().window(), GW_CHILD), nullptr);
  EXPECT_FALSE(site.inPlaceActive);
}

TEST_F(ActivationStepsTest, ASiteMayTakeTheActivationBackAtEachStep) {
  for (const bool windowless : {true, false}) {
    const auto control = makeControl();
    auto& site = container().book.make<RestlessSite>(
        "restless", container().window(), Container::SiteSettings{.windowless = windowless});
    ComPointer<IOleObject> object;
    ASSERT_EQ(control->query(object), S_OK);
    object->SetClientSite(&site);
    const auto activate = [&] {
      return object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &site, 0, container().window(), nullptr);
    };
    site.onActivate = [&] { control->deactivate(); };
    EXPECT_EQ(activate(), E_ABORT);
    EXPECT_FALSE(site.inPlaceActive);
    site.onContext = std::exchange(site.onActivate, nullptr);
    EXPECT_EQ(activate(), E_ABORT);
    EXPECT_FALSE(site.inPlaceActive);
    site.onUi = std::exchange(site.onContext, nullptr);
    EXPECT_EQ(activate(), S_OK);
    EXPECT_FALSE(site.inPlaceActive);
    EXPECT_FALSE(site.uiActive);
    site.onUi = nullptr;
    EXPECT_EQ(activate(), S_OK);
    EXPECT_TRUE(site.uiActive);
  }
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
