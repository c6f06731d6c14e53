#include "tests/container/drawing_win.h"

#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <algorithm>

#include "dialogs/dialog_com_win.h"

namespace Vantrel::Web::Container {

namespace {

constexpr CLSID kPngEncoder = {
    0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// A bitmap in memory with a device context on it.
class Canvas {
 public:
  Canvas(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    context_ = CreateCompatibleDC(nullptr);
    bitmap_ = CreateDIBSection(context_, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
    former_ = SelectObject(context_, bitmap_);
  }
  ~Canvas() {
    SelectObject(context_, former_);
    DeleteObject(bitmap_);
    DeleteDC(context_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC context() const { return context_; }
  uint32_t* bits() const { return static_cast<uint32_t*>(bits_); }

 private:
  HDC context_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ former_ = nullptr;
  void* bits_ = nullptr;
};

}  // namespace

uint32_t Drawing::at(int x, int y) const {
  return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
}

bool Drawing::save(const std::wstring& file) const {
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
  namespace Exports = Gdiplus::DllExports;
  std::vector<uint32_t> bytes = pixels;
  Gdiplus::GpBitmap* bitmap = nullptr;
  Exports::GdipCreateBitmapFromScan0(width, height, width * 4, PixelFormat32bppRGB,
                                     reinterpret_cast<BYTE*>(bytes.data()), &bitmap);
  const Gdiplus::GpStatus saved =
      Exports::GdipSaveImageToFile(bitmap, file.c_str(), &kPngEncoder, nullptr);
  Exports::GdipDisposeImage(bitmap);
  Gdiplus::GdiplusShutdown(token);
  return saved == Gdiplus::Ok;
}

Drawing drawContent(IUnknown* control, int width, int height, uint32_t ground) {
  Drawing drawing{E_UNEXPECTED, width, height, {}};
  const Canvas canvas(width, height);
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  std::fill_n(canvas.bits(), count, ground);
  ComPointer<IViewObject> view;
  drawing.result = control->QueryInterface(IID_IViewObject, view.putVoid());
  if (FAILED(drawing.result)) return drawing;
  const RECTL bounds = {0, 0, width, height};
  drawing.result = view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, canvas.context(),
                              &bounds, nullptr, nullptr, 0);
  GdiFlush();
  drawing.pixels.assign(canvas.bits(), canvas.bits() + count);
  for (uint32_t& pixel : drawing.pixels) pixel &= 0xFFFFFF;
  return drawing;
}

}  // namespace Vantrel::Web::Container
