// A picture, decoded once into a bitmap that is painted from then on. Owned by a view; its thread
// only. The module's start has brought the decoder up.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <cstdint>

namespace Vantrel::Web {

class Picture {
 public:
  // Decodes PNG, JPEG, GIF and BMP. What cannot be decoded, or has no room in memory, is a picture
  // that paints nothing.
  Picture(const unsigned char* data, uint32_t length);
  explicit Picture(IStream& stream) { decode(stream); }
  ~Picture();
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  // Fills the rectangle with the whole picture; what is transparent in it shows what was there.
  void draw(HDC dc, const RECT& rect) const;
  bool empty() const { return bitmap_ == nullptr; }

 private:
  void decode(IStream& stream);

  HBITMAP bitmap_ = nullptr;
  int width_ = 0;
  int height_ = 0;
  bool transparent_ = false;
};

}  // namespace Vantrel::Web
