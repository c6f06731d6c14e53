#include "browsers/shared/picture_win.h"

#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <climits>
#include <utility>

#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web {

namespace {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

constexpr WORD kBitsPerPixel = 32;
constexpr int kBytesPerPixel = kBitsPerPixel / 8;
// A picture says itself how large it is: a few bytes may ask for more than all memory.
constexpr int64_t kMostPixels = int64_t{256} << 20;

// An image of the decoder.
struct DecodedImage {
  DecodedImage() = default;
  ~DecodedImage() {
    if (image != nullptr) GdipDisposeImage(image);
  }
  DecodedImage(const DecodedImage&) = delete;
  DecodedImage& operator=(const DecodedImage&) = delete;
  GpImage* image = nullptr;
};

// The decoder's means to draw into an image.
struct Canvas {
  explicit Canvas(GpImage* image) { GdipGetImageGraphicsContext(image, &graphics); }
  ~Canvas() {
    if (graphics != nullptr) GdipDeleteGraphics(graphics);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  GpGraphics* graphics = nullptr;
};

}  // namespace

std::unique_ptr<Surface> Surface::create(int width, int height) {
  if (int64_t{width} * height > kMostPixels) return nullptr;
  std::unique_ptr<Surface> surface(new Surface(width, height));
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = kBitsPerPixel;
  surface->bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &surface->bits_, nullptr, 0);
  if (surface->bitmap_ == nullptr) return nullptr;
  surface->dc_ = CreateCompatibleDC(nullptr);
  if (surface->dc_ == nullptr) return nullptr;
  surface->former_ = SelectObject(surface->dc_, surface->bitmap_);
  return surface->former_ != nullptr ? std::move(surface) : nullptr;
}

Surface::~Surface() {
  if (former_ != nullptr) SelectObject(dc_, former_);
  if (dc_ != nullptr) DeleteDC(dc_);
  if (bitmap_ != nullptr) DeleteObject(bitmap_);
}

std::unique_ptr<Picture> Picture::of(const unsigned char* data, uint32_t length) {
  ComPointer<IStream> stream;
  ULONG written = 0;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.put())) ||
      FAILED(stream->Write(data, length, &written)) || written != length) {
    return nullptr;
  }
  constexpr LARGE_INTEGER kStart = {};
  stream->Seek(kStart, STREAM_SEEK_SET, nullptr);
  return std::make_unique<Picture>(*stream.get());
}

// What is cut short is decoded as far as it goes; Wine refuses it as a whole.
void Picture::decode(IStream& stream) {
  DecodedImage source;
  GpBitmap* decoded = nullptr;
  UINT width = 0;
  UINT height = 0;
  UINT flags = 0;
  if (GdipCreateBitmapFromStream(&stream, &decoded) != Ok) return;
  source.image = decoded;
  if (GdipGetImageWidth(decoded, &width) != Ok || GdipGetImageHeight(decoded, &height) != Ok ||
      width == 0 || height == 0 || width > INT_MAX / kBytesPerPixel || height > INT_MAX) {
    return;
  }
  GdipGetImageFlags(decoded, &flags);
  transparent_ = (flags & ImageFlagsHasAlpha) != 0;
  auto surface = Surface::create(static_cast<int>(width), static_cast<int>(height));
  if (!surface) return;
  DecodedImage target;
  GpBitmap* bitmap = nullptr;
  GdipCreateBitmapFromScan0(surface->width(), surface->height(), surface->width() * kBytesPerPixel,
                            PixelFormat32bppPARGB, static_cast<BYTE*>(surface->bits()), &bitmap);
  target.image = bitmap;
  if (target.image == nullptr) return;
  const Canvas canvas(target.image);
  if (canvas.graphics == nullptr) return;
  if (GdipDrawImageRectI(canvas.graphics, decoded, 0, 0, surface->width(), surface->height()) !=
      Ok) {
    // What was not drawn shows what was there.
    transparent_ = true;
  }
  full_ = std::move(surface);
}

void Picture::draw(HDC dc, const RECT& rect) {
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  if (full_ && width > 0 && height > 0) drawFrom(surfaceFor(width, height), dc, rect);
}

// Of the window's size, or the whole picture where there is no room for another.
const Surface& Picture::surfaceFor(int width, int height) {
  const auto fits = [=](const Surface& surface) {
    return surface.width() == width && surface.height() == height;
  };
  if (fits(*full_)) return *full_;
  if (scaled_ && fits(*scaled_)) return *scaled_;
  scaled_ = Surface::create(width, height);
  if (!scaled_) return *full_;
  drawFrom(*full_, scaled_->dc(), {0, 0, width, height});
  return *scaled_;
}

// Blending into a bitmap that is empty leaves the opacity in it, to be blended again.
void Picture::drawFrom(const Surface& surface, HDC dc, const RECT& rect) const {
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  if (transparent_) {
    constexpr BLENDFUNCTION kBlend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    GdiAlphaBlend(dc, rect.left, rect.top, width, height, surface.dc(), 0, 0, surface.width(),
                  surface.height(), kBlend);
  } else if (width == surface.width() && height == surface.height()) {
    BitBlt(dc, rect.left, rect.top, width, height, surface.dc(), 0, 0, SRCCOPY);
  } else {
    SetStretchBltMode(dc, HALFTONE);
    StretchBlt(dc, rect.left, rect.top, width, height, surface.dc(), 0, 0, surface.width(),
               surface.height(), SRCCOPY);
  }
}

}  // namespace Vantrel::Web
