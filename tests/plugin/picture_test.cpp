// The element's picture in every format that is decoded, whole and broken, read back from the
// window; and how often it is decoded and brought to the window's size.
#include "tests/plugin/view_fixture.h"

#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <cstring>
#include <optional>
#include <vector>

#include "tests/plugin/red_bitmap.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web {
namespace {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;
using TestSupport::ImportPatch;

constexpr char kUrl[] = "http://x/picture";
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr GUID kPng = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0, 0, 0xf8, 0x1e, 0xf3, 0x2e}};
constexpr GUID kJpeg = {0x557cf401, 0x1a04, 0x11d3, {0x9a, 0x73, 0, 0, 0xf8, 0x1e, 0xf3, 0x2e}};

// The platform's encoder, in use for one test.
class Encoder {
 public:
  Encoder() {
    const GdiplusStartupInput input;
    EXPECT_EQ(GdiplusStartup(&token_, &input, nullptr), Ok);
  }
  ~Encoder() { GdiplusShutdown(token_); }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  // A square of as many points as the element has, each half of one colour (opacity first).
  static std::string encode(const GUID& format, ARGB left, ARGB right) {
    GpBitmap* bitmap = nullptr;
    EXPECT_EQ(GdipCreateBitmapFromScan0(kSize, kSize, 0, PixelFormat32bppARGB, nullptr, &bitmap),
              Ok);
    for (int x = 0; x < kSize; ++x) {
      for (int y = 0; y < kSize; ++y)
        GdipBitmapSetPixel(bitmap, x, y, x < kSize / 2 ? left : right);
    }
    IStream* stream = nullptr;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
    EXPECT_EQ(GdipSaveImageToStream(bitmap, stream, &format, nullptr), Ok);
    GdipDisposeImage(bitmap);
    std::string data = contentOf(*stream);
    stream->Release();
    return data;
  }

 private:
  static std::string contentOf(IStream& stream) {
    STATSTG status = {};
    EXPECT_EQ(stream.Stat(&status, STATFLAG_NONAME), S_OK);
    std::string data(status.cbSize.LowPart, '\0');
    HGLOBAL memory = nullptr;
    EXPECT_EQ(GetHGlobalFromStream(&stream, &memory), S_OK);
    std::memcpy(data.data(), GlobalLock(memory), data.size());
    GlobalUnlock(memory);
    return data;
  }

  ULONG_PTR token_ = 0;
};

// Two points, the left one red and the right one transparent.
std::string twoPointGif() {
  constexpr unsigned char kGif[] = {'G', 'I', 'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0, 255, 0, 0,
                                    0, 0, 255, 0x21, 0xF9, 4, 1, 0, 0, 1, 0,  // the second colour
                                                                              // is transparent
                                    0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0,          // the picture's place
                                    2, 2, 0x44, 0x0A, 0, 0x3B};
  return {reinterpret_cast<const char*>(kGif), sizeof kGif};
}

class PictureTest : public ViewTest {
 protected:
  void SetUp() override {
    encoder_.emplace();
    ViewTest::SetUp();
    instance_.emplace(host(), std::vector<Host::Parameter>{{"image", kUrl}});
    setWindow(*instance_);
  }
  void TearDown() override {
    instance_.reset();
    ViewTest::TearDown();
    encoder_.reset();
  }

  void show(const std::string& data) { sendPicture(*instance_, kUrl, data); }
  // As a transparent element shows it over what lies behind.
  void showOverPage(const std::string& data) {
    instance_.reset();
    instance_.emplace(host(),
                      std::vector<Host::Parameter>{{"image", kUrl}, {"transparent", "yes"}});
    setWindow(*instance_);
    NPWindow shown = window();
    shown.x = shown.y = 100;  // a place of the page where nothing of ours is
    EXPECT_EQ(host().plugin().setwindow(instance_->npp(), &shown), NPERR_NO_ERROR);
    show(data);
  }
  // The colours in the middle of both halves once all is painted.
  std::vector<COLORREF> halves(bool erase = false) {
    painted(erase);
    const HDC dc = GetDC(child_);
    const std::vector<COLORREF> colours = {GetPixel(dc, kSize / 4, kSize / 2),
                                           GetPixel(dc, kSize - kSize / 4, kSize / 2)};
    ReleaseDC(child_, dc);
    return colours;
  }
  HMODULE library() { return static_cast<HMODULE>(const_cast<void*>(host().module())); }

  std::optional<Encoder> encoder_;
  std::optional<Instance> instance_;
};

// Formats that lose precision, and blending, come close only.
void expectNear(COLORREF colour, int red, int green, int blue) {
  constexpr int kTolerance = 4;
  EXPECT_NEAR(GetRValue(colour), red, kTolerance);
  EXPECT_NEAR(GetGValue(colour), green, kTolerance);
  EXPECT_NEAR(GetBValue(colour), blue, kTolerance);
}

TEST_F(PictureTest, AnOpaquePngIsPaintedPointForPoint) {
  show(Encoder::encode(kPng, 0xFFFF0000, 0xFF123456));
  EXPECT_EQ(halves(), (std::vector<COLORREF>{kRed, RGB(0x12, 0x34, 0x56)}));
}

TEST_F(PictureTest, WhatAPngLeavesOpenShowsThePage) {
  showOverPage(Encoder::encode(kPng, 0x800000FF, 0x00FF0000));
  const std::vector<COLORREF> colours = halves(true);
  expectNear(colours[0], 0, GetGValue(kBehind) / 2, 128);
  EXPECT_EQ(colours[1], kBehind);
}

TEST_F(PictureTest, AHalfOpaquePngKeepsItsOpacityInAnotherSize) {
  SetWindowPos(child_, nullptr, 0, 0, kSize * 2, kSize * 2, SWP_NOMOVE | SWP_NOZORDER);
  showOverPage(Encoder::encode(kPng, 0x800000FF, 0x00FF0000));
  // Twice, as the second one comes from what the first one made.
  for (int paint = 0; paint < 2; ++paint) {
    painted(true);
    const HDC dc = GetDC(child_);
    expectNear(GetPixel(dc, kSize / 4, kSize / 4), 0, GetGValue(kBehind) / 2, 128);
    ReleaseDC(child_, dc);
  }
}

TEST_F(PictureTest, AJpegIsPainted) {
  show(Encoder::encode(kJpeg, 0xFF0000FF, 0xFF00FF00));
  const std::vector<COLORREF> colours = halves();
  expectNear(colours[0], 0, 0, 255);
  expectNear(colours[1], 0, 255, 0);
}

TEST_F(PictureTest, AGifIsPaintedWithItsTransparentColour) {
  showOverPage(twoPointGif());
  EXPECT_EQ(halves(true), (std::vector<COLORREF>{kRed, kBehind}));
}

TEST_F(PictureTest, ABitmapIsPainted) {
  show(redBitmap(kSize, kSize));
  EXPECT_EQ(halves(), (std::vector<COLORREF>{kRed, kRed}));
}

// Wine decodes nothing of a picture that is cut short; Windows may show its first rows.
TEST_F(PictureTest, WhatCannotBeDecodedPaintsNothing) {
  std::string cut = Encoder::encode(kPng, 0xFFFF0000, 0xFFFF0000);
  cut.resize(cut.size() / 2);
  std::string header = Encoder::encode(kPng, 0xFFFF0000, 0xFFFF0000);
  header.replace(16, 8, std::string(8, '\xFF'));  // a width and a height beyond all bounds
  for (const std::string& broken : {std::string("no picture"), std::string(1, '\0'), cut, header}) {
    EXPECT_EQ(halves(), (std::vector<COLORREF>{kWhite, kWhite}));
    show(broken);
    EXPECT_EQ(halves(), (std::vector<COLORREF>{kWhite, kWhite}));
  }
  show(redBitmap(1, 1));
  EXPECT_EQ(halves(), (std::vector<COLORREF>{kRed, kRed}));
}

int decodes = 0;
int stretches = 0;
decltype(&GdipCreateBitmapFromStream) realDecode = nullptr;
decltype(&StretchBlt) realStretch = nullptr;
decltype(&GdiAlphaBlend) realBlend = nullptr;

GpStatus WINGDIPAPI countedDecode(IStream* stream, GpBitmap** bitmap) {
  ++decodes;
  return realDecode(stream, bitmap);
}

BOOL WINAPI countedStretch(HDC target, int x, int y, int width, int height, HDC source, int fromX,
                           int fromY, int fromWidth, int fromHeight, DWORD operation) {
  ++stretches;
  return realStretch(target, x, y, width, height, source, fromX, fromY, fromWidth, fromHeight,
                     operation);
}

// Wine takes every picture with a table of colours for one with opacity, which is blended.
BOOL WINAPI countedBlend(HDC target, int x, int y, int width, int height, HDC source, int fromX,
                         int fromY, int fromWidth, int fromHeight, BLENDFUNCTION how) {
  if (fromWidth != width || fromHeight != height) ++stretches;
  return realBlend(target, x, y, width, height, source, fromX, fromY, fromWidth, fromHeight, how);
}

TEST_F(PictureTest, FortyMegapixelsAreDecodedOnceAndScaledOnceForEachSize) {
  const ImportPatch decode(library(), "GdipCreateBitmapFromStream", countedDecode);
  realDecode = decode.former<std::remove_pointer_t<decltype(realDecode)>>();
  const ImportPatch stretch(library(), "StretchBlt", countedStretch);
  realStretch = stretch.former<std::remove_pointer_t<decltype(realStretch)>>();
  const ImportPatch blend(library(), "GdiAlphaBlend", countedBlend);
  realBlend = blend.former<std::remove_pointer_t<decltype(realBlend)>>();
  show(redBitmap(8000, 5000));
  for (int paint = 0; paint < 5; ++paint) {
    EXPECT_EQ(halves(), (std::vector<COLORREF>{kRed, kRed}));
    EXPECT_EQ(decodes, 1);
    EXPECT_EQ(stretches, 1);
  }
  SetWindowPos(child_, nullptr, 0, 0, kSize * 2, kSize, SWP_NOMOVE | SWP_NOZORDER);
  for (int paint = 0; paint < 5; ++paint) EXPECT_EQ(painted(), kRed);
  EXPECT_EQ(decodes, 1);
  EXPECT_EQ(stretches, 2);
}

}  // namespace
}  // namespace Vantrel::Web
