#include "paint_event.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>

namespace engine {
namespace {

const XGraphicsExposeEvent& request(const void* event) {
  return static_cast<const XEvent*>(event)->xgraphicsexpose;
}

}  // namespace

bool isPaintEvent(const void* event) {
  return event != nullptr && static_cast<const XEvent*>(event)->type == GraphicsExpose;
}

bool paint(const void* event, const PluginWindows::Picture& picture) {
  if (picture.pixels.empty()) return false;
  Display* display = request(event).display;
  const Drawable drawable = request(event).drawable;
  Window root = 0;
  int x = 0, y = 0;
  unsigned width = 0, height = 0, border = 0, depth = 0;
  if (!XGetGeometry(display, drawable, &root, &x, &y, &width, &height, &border, &depth))
    return false;
  std::vector<uint32_t> pixels = picture.pixels;
  // A drawable with transparency would take the unused byte for it.
  for (uint32_t& pixel : pixels) pixel |= 0xff000000U;
  XImage* image =
      XCreateImage(display, nullptr, depth, ZPixmap, 0, reinterpret_cast<char*>(pixels.data()),
                   static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), 32,
                   picture.width * 4);
  if (image == nullptr) return false;
  GC context = XCreateGC(display, drawable, 0, nullptr);
  XPutImage(display, drawable, context, image, 0, 0, 0, 0,
            std::min(width, static_cast<unsigned>(picture.width)),
            std::min(height, static_cast<unsigned>(picture.height)));
  XSync(display, False);
  XFreeGC(display, context);
  image->data = nullptr;  // the pixels are not the image's
  XDestroyImage(image);
  return true;
}

}  // namespace engine
