// The element's window: what is painted in it, and what is left of us in it at the end.
#include <cstring>

#include "tests/plugin/view_fixture.h"

namespace Vantrel::Web {
namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kWhite = RGB(255, 255, 255);

// A picture of 2 by 2 red points, 24 bits each.
std::string redPicture() {
  std::string rows;
  for (int row = 0; row < 2; ++row) rows += std::string("\0\0\xFF\0\0\xFF\0\0", 8);
  BITMAPFILEHEADER file = {};
  BITMAPINFOHEADER info = {};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof info;
  file.bfSize = static_cast<DWORD>(file.bfOffBits + rows.size());
  info.biSize = sizeof info;
  info.biWidth = info.biHeight = 2;
  info.biPlanes = 1;
  info.biBitCount = 24;
  std::string text(file.bfOffBits, '\0');
  std::memcpy(text.data(), &file, sizeof file);
  std::memcpy(text.data() + sizeof file, &info, sizeof info);
  return text + rows;
}

TEST_F(ViewTest, AnElementWithoutAPictureIsWhite) {
  Instance instance(host());
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
}

TEST_F(ViewTest, APictureFillsTheElement) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/other.bmp", redPicture());
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redPicture());
  EXPECT_EQ(painted(), kRed);
}

TEST_F(ViewTest, AnEmptyPictureChangesNothingAndABrokenOnePaintsNothing) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", "");
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redPicture());
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
  sendPicture(instance, "http://x/red.bmp", redPicture());
  setWindow(instance);
  EXPECT_TRUE(instance.call("initSession", {text("app"), text("")}).accepted);
}

TEST_F(ViewTest, ManyRoundsLeaveNoObjectOfTheGraphicsSystem) {
  const auto round = [this] {
    Instance instance(host(), {{"transparent", "yes"}, {"image", "http://x/red.bmp"}});
    setWindow(instance);
    setWindow(instance);
    sendPicture(instance, "http://x/red.bmp", redPicture());
    EXPECT_EQ(painted(true), kRed);
  };
  const auto objects = [] { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); };
  for (int i = 0; i < 3; ++i) round();
  const DWORD before = objects();
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(objects(), before);
}

}  // namespace
}  // namespace Vantrel::Web
