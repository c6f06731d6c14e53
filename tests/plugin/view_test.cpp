// The element's window: what is painted in it, and what is left of us in it at the end.
#include <objidl.h>

#include <cstring>

#include "tests/plugin/red_bitmap.h"
#include "tests/plugin/view_fixture.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web {
namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kMark = RGB(0, 0, 255);

TEST_F(ViewTest, AnElementWithoutAPictureIsWhite) {
  Instance instance(host());
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
  EXPECT_TRUE(host().urlRequests.empty());
}

TEST_F(ViewTest, OnlyTheExactWordMakesAnElementTransparent) {
  for (const char* const word : {"Yes", "YES", "true", ""}) {
    Instance instance(host(), {{"transparent", word}});
    setWindow(instance);
    fill(kMark);
    EXPECT_EQ(painted(), kWhite) << word;
  }
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

HRESULT WINAPI noStream(HGLOBAL, BOOL, IStream** stream) {
  *stream = nullptr;
  return E_OUTOFMEMORY;
}

TEST_F(ViewTest, APictureThatThereIsNoRoomForLeavesTheFormerOne) {
  auto* const library = static_cast<HMODULE>(const_cast<void*>(host().module()));
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2));
  {
    const TestSupport::ImportPatch patch(library, "CreateStreamOnHGlobal", noStream);
    sendPicture(instance, "http://x/red.bmp", "another");
  }
  fill(kMark);
  EXPECT_EQ(painted(), kRed);
}

TEST_F(ViewTest, AnEmptyPieceOfAPictureTakesNothingAway) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  std::string data = redBitmap(2, 2);
  char url[] = "http://x/red.bmp";
  NPStream stream = {};
  stream.url = url;
  const auto write = [&](int32_t length) {
    return host().plugin().write(instance.npp(), &stream, 0, length, data.data());
  };
  EXPECT_EQ(write(static_cast<int32_t>(data.size())), static_cast<int32_t>(data.size()));
  EXPECT_EQ(write(0), 0);
  host().plugin().destroystream(instance.npp(), &stream, NPRES_DONE);
  EXPECT_EQ(painted(), kRed);
}

TEST_F(ViewTest, ATransparentElementShowsWhatLiesBehindOnceItWasTaken) {
  Instance instance(host(), {{"transparent", "yes"}});
  setWindow(instance);
  NPWindow shown = window();
  shown.x = shown.y = 100;  // a place of the page where nothing of ours is
  EXPECT_EQ(host().plugin().setwindow(instance.npp(), &shown), NPERR_NO_ERROR);
  EXPECT_EQ(painted(true), kBehind);
}

TEST_F(ViewTest, ATransparentElementPaintsNothingBeforeThat) {
  Instance instance(host(), {{"transparent", "yes"}});
  setWindow(instance);
  fill(kMark);
  EXPECT_EQ(painted(), kMark);
  EXPECT_FALSE(logHas("display image"));
  EXPECT_EQ(painted(true), kMark);  // nor is anything erased
}

TEST_F(ViewTest, ASessionPaintsTheElementAgainWhateverBecomesOfIt) {
  Instance instance(host(), {{"transparent", "yes"}});
  setWindow(instance);
  UpdateWindow(child_);
  EXPECT_EQ(logCount("display image\r\n"), 0U);
  const std::string reply =
      instance.call("initSession", {text("^other.host"), text("")}).value.text;
  EXPECT_EQ(reply.rfind("{\"error\":", 0), 0U) << reply;
  UpdateWindow(child_);
  // There is no snapshot yet, which the page's next change of the window brings.
  EXPECT_EQ(logCount("display image\r\n"), 1U);
  EXPECT_FALSE(logHas("display image_start"));
  setWindow(instance);
  fill(kMark);
  EXPECT_EQ(painted(), kBehind);
}

TEST_F(ViewTest, APictureWinsOverTheSnapshotWhichErasesTheWindowAllTheSame) {
  Instance instance(host(), {{"transparent", "yes"}, {"image", "http://x/red.bmp"}});
  setWindow(instance);
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2));
  fill(kMark);
  EXPECT_EQ(painted(), kRed);
  const HDC dc = GetDC(child_);
  EXPECT_EQ(SendMessageW(child_, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0), 1);
  ReleaseDC(child_, dc);
  EXPECT_EQ(shown(), kBehind);
  EXPECT_EQ(painted(true), kRed);
}

TEST_F(ViewTest, AStreamThatBreaksOffShowsWhatCame) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", redBitmap(2, 2), NPRES_NETWORK_ERR);
  EXPECT_EQ(painted(), kRed);
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

TEST_F(ViewTest, AWindowThatASecondInstanceGetsIsTheSecondOnes) {
  const LONG_PTR before = GetWindowLongPtrW(child_, GWLP_WNDPROC);
  Instance first(host(), {{"image", "http://x/red.bmp"}});
  setWindow(first);
  sendPicture(first, "http://x/red.bmp", redBitmap(2, 2));
  EXPECT_EQ(painted(), kRed);
  Instance second(host());
  setWindow(second);
  EXPECT_EQ(painted(), kWhite);
  EXPECT_EQ(SendMessageW(child_, WM_NULL, 0, 0), 0);
  EXPECT_FALSE(logHas("RegisterDragDrop failed"));
  first.end();
  EXPECT_EQ(painted(), kWhite);
  EXPECT_NE(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
  second.end();
  EXPECT_EQ(GetWindowLongPtrW(child_, GWLP_WNDPROC), before);
  EXPECT_EQ(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
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
