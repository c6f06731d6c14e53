// A picture, decoded once and brought to a window's size once; from then on that is copied. Owned
// by a view; its thread only. The module's start has brought the decoder up.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <cstdint>
#include <memory>

namespace Vantrel::Web {

// A bitmap of 32 bits whose colours are multiplied by their opacity, in a device context of its
// own, which a repaint would otherwise have to make anew. One thread.
class Surface {
 public:
  // Null when there is no room for it, or it would take more than 1 GiB.
  static std::unique_ptr<Surface> create(int width, int height);
  ~Surface();
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  int width() const { return width_; }
  int height() const { return height_; }
  HDC dc() const { return dc_; }
  // The rows, top first, without gaps.
  void* bits() const { return bits_; }

 private:
  Surface(int width, int height) : width_(width), height_(height) {}

  const int width_;
  const int height_;
  void* bits_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HDC dc_ = nullptr;
  HGDIOBJ former_ = nullptr;
};

class Picture {
 public:
  // Decodes PNG, JPEG, GIF and BMP, from where the stream stands. What cannot be decoded, or has no
  // room in memory, is a picture that paints nothing.
  explicit Picture(IStream& stream) { decode(stream); }
  // The same of bytes in memory; null where there is no room for a stream of them.
  static std::unique_ptr<Picture> of(const unsigned char* data, uint32_t length);
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  // Fills the rectangle with the whole picture; what is transparent in it shows what was there.
  void draw(HDC dc, const RECT& rect);
  bool empty() const { return full_ == nullptr; }

 private:
  void decode(IStream& stream);
  const Surface& surfaceFor(int width, int height);
  void drawFrom(const Surface& surface, HDC dc, const RECT& rect) const;

  std::unique_ptr<Surface> full_;
  std::unique_ptr<Surface> scaled_;  // of the size that was drawn last, if that is another
  bool transparent_ = false;
};

}  // namespace Vantrel::Web
