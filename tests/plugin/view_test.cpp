// The element's window: what is painted in it, and what is left of us in it at the end.
#include <cstring>

#include "tests/plugin/red_bitmap.h"
#include "tests/plugin/view_fixture.h"

namespace Vantrel::Web {
namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);

TEST_F(ViewTest, AnElementWithoutAPictureIsWhite) {
  Instance instance(host());
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
}

TEST_F(ViewTest, APictureFillsTheElement) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/other.bmp", redBitmap(2, 2));
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2));
  EXPECT_EQ(painted(), kRed);
}

TEST_F(ViewTest, AnEmptyPictureChangesNothingAndABrokenOnePaintsNothing) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", "");
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2));
  EXPECT_EQ(painted(), kRed);
  sendPicture(instance, "http://x/red.bmp", "no picture at all");
  EXPECT_EQ(painted(), kRed);  // as it was left
}

TEST_F(ViewTest, ATransparentElementShowsWhatLiesBehindOnceItWasTaken) {
  Instance instance(host(), {{"transparent", "yes"}});
  setWindow(instance);
  NPWindow shown = window();
  shown.x = shown.y = 100;  // a place of the page where nothing of ours is
  EXPECT_EQ(host().plugin().setwindow(instance.npp(), &shown), NPERR_NO_ERROR);
  EXPECT_EQ(painted(true), kBehind);
}

TEST_F(ViewTest, TheWindowIsAsItWasWhenTheInstanceIsGone) {
  const LONG_PTR before = GetWindowLongPtrW(child_, GWLP_WNDPROC);
  for (int round = 0; round < 2; ++round) {
    Instance instance(host());
    setWindow(instance);
    EXPECT_NE(GetWindowLongPtrW(child_, GWLP_WNDPROC), before);
    EXPECT_NE(GetWindowLongPtrW(child_, GWLP_USERDATA), 0);
    EXPECT_NE(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
    EXPECT_FALSE(logHas("RegisterDragDrop failed"));
    instance.end();
    EXPECT_EQ(GetWindowLongPtrW(child_, GWLP_WNDPROC), before);
    EXPECT_EQ(GetWindowLongPtrW(child_, GWLP_USERDATA), 0);
    EXPECT_EQ(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
  }
}

TEST_F(ViewTest, AWindowMayGoBeforeItsInstance) {
  Instance instance(host(), {{"transparent", "yes"}, {"image", "http://x/red.bmp"}});
  setWindow(instance);
  DestroyWindow(child_);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2));
  setWindow(instance);
  EXPECT_TRUE(instance.call("initSession", {text("app"), text("")}).accepted);
}

}  // namespace
}  // namespace Vantrel::Web
