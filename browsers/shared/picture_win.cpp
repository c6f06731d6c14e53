#include "browsers/shared/picture_win.h"

#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web {

namespace {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

constexpr WORD kBitsPerPixel = 32;

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

// A device context in memory with a bitmap selected.
class BitmapContext {
 public:
  BitmapContext(HDC like, HBITMAP bitmap)
      : dc_(CreateCompatibleDC(like)), former_(SelectObject(dc_, bitmap)) {}
  ~BitmapContext() {
    SelectObject(dc_, former_);
    DeleteDC(dc_);
  }
  BitmapContext(const BitmapContext&) = delete;
  BitmapContext& operator=(const BitmapContext&) = delete;
  HDC get() const { return dc_; }

 private:
  const HDC dc_;
  const HGDIOBJ former_;
};

}  // namespace

Picture::Picture(const unsigned char* data, uint32_t length) {
  ComPointer<IStream> stream;
  ULONG written = 0;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.put())) ||
      FAILED(stream->Write(data, length, &written)) || written != length) {
    return;
  }
  constexpr LARGE_INTEGER kStart = {};
  stream->Seek(kStart, STREAM_SEEK_SET, nullptr);
  decode(*stream.get());
}

Picture::~Picture() {
  if (bitmap_ != nullptr) DeleteObject(bitmap_);
}

// Into 32 bits with colours multiplied by their opacity, which is what the system blends.
void Picture::decode(IStream& stream) {
  DecodedImage source;
  GpBitmap* decoded = nullptr;
  UINT width = 0;
  UINT height = 0;
  UINT flags = 0;
  if (GdipCreateBitmapFromStream(&stream, &decoded) != Ok) return;
  source.image = decoded;
  if (GdipGetImageWidth(decoded, &width) != Ok || GdipGetImageHeight(decoded, &height) != Ok ||
      width == 0 || height == 0 || width > INT_MAX / 4 || height > INT_MAX) {
    return;
  }
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = static_cast<LONG>(width);
  info.bmiHeader.biHeight = -static_cast<LONG>(height);  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = kBitsPerPixel;
  void* bits = nullptr;
  bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap_ == nullptr) return;
  width_ = static_cast<int>(width);
  height_ = static_cast<int>(height);
  GdipGetImageFlags(decoded, &flags);
  transparent_ = (flags & ImageFlagsHasAlpha) != 0;
  DecodedImage target;
  GpBitmap* bitmap = nullptr;
  GdipCreateBitmapFromScan0(width_, height_, width_ * 4, PixelFormat32bppPARGB,
                            static_cast<BYTE*>(bits), &bitmap);
  target.image = bitmap;
  if (target.image == nullptr) return;
  const Canvas canvas(target.image);
  GdipDrawImageRectI(canvas.graphics, decoded, 0, 0, width_, height_);
}

void Picture::draw(HDC dc, const RECT& rect) const {
  if (bitmap_ == nullptr) return;
  const BitmapContext source(dc, bitmap_);
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  if (transparent_) {
    constexpr BLENDFUNCTION kBlend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    GdiAlphaBlend(dc, rect.left, rect.top, width, height, source.get(), 0, 0, width_, height_,
                  kBlend);
  } else if (width == width_ && height == height_) {
    BitBlt(dc, rect.left, rect.top, width, height, source.get(), 0, 0, SRCCOPY);
  } else {
    SetStretchBltMode(dc, HALFTONE);
    StretchBlt(dc, rect.left, rect.top, width, height, source.get(), 0, 0, width_, height_,
               SRCCOPY);
  }
}

}  // namespace Vantrel::Web
