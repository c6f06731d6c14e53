#include "x_display.h"

#include <X11/Xlib.h>

#include <cstdlib>

namespace engine {

bool prepareDisplay(std::string& problem) {
  XInitThreads();
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) {
    const char* name = std::getenv("DISPLAY");
    problem = std::string("no X display ") + (name != nullptr ? name : "(DISPLAY is not set)");
    return false;
  }
  XCloseDisplay(display);
  return true;
}

}  // namespace engine
