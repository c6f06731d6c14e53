// The control shown in its container: with a window or without, with the keyboard, and what its end
// leaves.
#include <gmock/gmock.h>

#include <windows.h>
#include <ocidl.h>
#include <oleidl.h>

#include <string>
#include <vector>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

using testing::ElementsAre;

class ActivationTest : public ControlTest {
 protected:
  static HWND windowOf(Control& control) {
    ComPointer<IOleWindow> window;
    HWND handle = nullptr;
    if (SUCCEEDED(control.query(window))) window->GetWindow(&handle);
    return handle;
  }
};

TEST_F(ActivationTest, AWindowIsMadeWhereTheSiteWants) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  EXPECT_EQ(windowOf(*control), nullptr);
  ASSERT_EQ(control->activate(), S_OK);
  const HWND window = windowOf(*control);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(GetParent(window), container().window());
  RECT place = {};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, container().window(), reinterpret_cast<POINT*>(&place), 2);
  EXPECT_NE(EqualRect(&place, &start.site.place), FALSE);
  EXPECT_TRUE(control->site().inPlaceActive);
  EXPECT_FALSE(control->site().windowlessActive);
  EXPECT_EQ(control->site().shows, 1);
  // Without a picture what lies behind shows through.
  EXPECT_NE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TRANSPARENT, 0);
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::OnCreate()"));
  // The system knows it as a target of drags.
  EXPECT_EQ(RevokeDragDrop(window), S_OK);
  EXPECT_EQ(control->deactivate(), S_OK);
  EXPECT_EQ(IsWindow(window), FALSE);
  EXPECT_FALSE(control->site().inPlaceActive);
}

TEST_F(ActivationTest, TheWindowPaintsThroughTheControl) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  SendMessageW(windowOf(*control), WM_PAINT, 0, 0);
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::OnDraw()"));
}

TEST_F(ActivationTest, TheWindowFollowsItsPlace) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  ComPointer<IOleInPlaceObject> inPlace;
  ASSERT_EQ(control->query(inPlace), S_OK);
  const RECT place = {5, 6, 45, 36};
  const RECT clip = {5, 6, 25, 36};
  EXPECT_EQ(inPlace->SetObjectRects(&place, &clip), S_OK);
  const HWND window = windowOf(*control);
  RECT client = {};
  GetClientRect(window, &client);
  EXPECT_EQ(client.right, 40);
  EXPECT_EQ(client.bottom, 30);
  RECT seen = {};
  EXPECT_EQ(GetWindowRgnBox(window, &seen), SIMPLEREGION);
  EXPECT_EQ(seen.right, 20);
  inPlace->SetObjectRects(&place, &place);
  EXPECT_EQ(GetWindowRgnBox(window, &seen), ERROR);
  EXPECT_EQ(inPlace->SetObjectRects(nullptr, nullptr), E_INVALIDARG);
}

TEST_F(ActivationTest, WithoutAWindowWhereTheSiteCan) {
  const auto control = makeControl();
  ASSERT_EQ(control->activate(), S_OK);
  EXPECT_TRUE(control->site().windowlessActive);
  EXPECT_EQ(windowOf(*control), nullptr);
  ComPointer<IOleInPlaceObjectWindowless> windowless;
  ASSERT_EQ(control->query(windowless), S_OK);
  ComPointer<IDropTarget> target;
  EXPECT_EQ(windowless->GetDropTarget(target.put()), S_OK);
  EXPECT_TRUE(target);
  LRESULT answer = 1;
  EXPECT_EQ(windowless->OnWindowMessage(WM_MOUSEMOVE, 0, 0, &answer), S_FALSE);
}

TEST_F(ActivationTest, ADropTargetMayOutliveItsControl) {
  ComPointer<IDropTarget> target;
  {
    const auto control = makeControl();
    ComPointer<IOleInPlaceObjectWindowless> windowless;
    ASSERT_EQ(control->query(windowless), S_OK);
    windowless->GetDropTarget(target.put());
  }
  EXPECT_EQ(target->DragLeave(), S_OK);
  // Its code is the library's, which stays for it.
  EXPECT_EQ(library().canUnload(), S_FALSE);
  target.reset();
  EXPECT_EQ(library().canUnload(), S_OK);
}

TEST_F(ActivationTest, ASiteThatRefusesLeavesItPassive) {
  ControlStart start;
  start.site.inPlace = false;
  const auto control = makeControl(start);
  EXPECT_NE(control->activate(), S_OK);
  start.giveSite = false;
  const auto second = makeControl(start);
  EXPECT_EQ(second->activate(), E_UNEXPECTED);
}

TEST_F(ActivationTest, TheWindowsClassGoesWithTheLastWindow) {
  ControlStart start;
  start.site.windowless = false;
  const auto isKnown = [this] {
    WNDCLASSEXW found = {};
    found.cbSize = sizeof found;
    return GetClassInfoExW(library().module(), L"OrvaneWebControl", &found) != FALSE;
  };
  const auto first = makeControl(start);
  const auto second = makeControl(start);
  first->activate();
  second->activate();
  DestroyWindow(windowOf(*first));
  first->deactivate();
  EXPECT_TRUE(isKnown());
  second->deactivate();
  EXPECT_FALSE(isKnown());
}

TEST_F(ActivationTest, TheUserMayHaveTheKeyboardInIt) {
  const auto control = makeControl();
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  const RECT place = {0, 0, 10, 10};
  EXPECT_EQ(object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &control->site(), 0, container().window(),
                           &place),
            S_OK);
  EXPECT_TRUE(control->site().uiActive);
  EXPECT_EQ(object->DoVerb(OLEIVERB_HIDE, nullptr, &control->site(), 0, nullptr, nullptr), S_OK);
  EXPECT_FALSE(control->site().uiActive);
  EXPECT_TRUE(control->site().inPlaceActive);
  EXPECT_EQ(object->DoVerb(7, nullptr, nullptr, 0, nullptr, nullptr), OLEOBJ_S_INVALIDVERB);
  EXPECT_EQ(object->DoVerb(OLEIVERB_OPEN, nullptr, nullptr, 0, nullptr, nullptr), E_NOTIMPL);
}

TEST_F(ActivationTest, FrameAndDocumentHearWhoHasTheKeyboard) {
  ControlStart start;
  start.site.documentWindow = true;
  const auto control = makeControl(start);
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  EXPECT_EQ(object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &control->site(), 0, container().window(),
                           nullptr),
            S_OK);
  std::vector<std::string>& heard = control->site().heardAround;
  EXPECT_THAT(heard, ElementsAre("frame active", "document active", "frame no border",
                                 "document no border"));
  heard.clear();
  EXPECT_EQ(control->deactivate(), S_OK);
  EXPECT_THAT(heard, ElementsAre("frame none active", "document none active"));
}

TEST_F(ActivationTest, AFrameThatTakesTheKeyboardBackIsNotFollowedByTheDocument) {
  ControlStart start;
  start.site.documentWindow = true;
  const auto control = makeControl(start);
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  control->site().onFrameActive = [&] { EXPECT_EQ(control->deactivate(), S_OK); };
  object->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &control->site(), 0, container().window(), nullptr);
  EXPECT_THAT(control->site().heardAround,
              ElementsAre("frame active", "frame none active", "document none active"));
}

TEST_F(ActivationTest, AControlMayGoWhileItIsShown) {
  ControlStart start;
  start.site.windowless = false;
  auto control = makeControl(start);
  control->activate();
  const HWND window = windowOf(*control);
  control->release();
  EXPECT_EQ(IsWindow(window), FALSE);
}

TEST_F(ActivationTest, AWindowMayGoWithTheContainersOne) {
  ControlStart start;
  start.site.windowless = false;
  const auto control = makeControl(start);
  control->activate();
  DestroyWindow(windowOf(*control));
  EXPECT_EQ(windowOf(*control), nullptr);
  EXPECT_EQ(control->deactivate(), S_OK);
}

TEST_F(ActivationTest, AWindowThatGoesWithTheContainersOneGivesItsTargetBack) {
  ControlStart start;
  start.site.windowless = false;
  auto control = makeControl(start);
  control->activate();
  DestroyWindow(windowOf(*control));
  control.reset();
  EXPECT_EQ(library().canUnload(), S_OK);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
