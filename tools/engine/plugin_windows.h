// The plug-in's thread: its windows and its message loop. One top-level window stands for the
// browser's; it lies below the engine's and shows nothing. Every instance has a child of it, whose
// picture the engine puts into the page. Owned by main(); all calls are for the plug-in's thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin_abi.h"

namespace engine {

class PluginWindows {
 public:
  // Makes the calling thread the plug-in's thread: creates the top-level window and attaches the
  // thread to the bridge. False if there are no windows here.
  bool create();

  // The top-level window's handle.
  void* topLevel() const { return top_; }
  // The instance's child window at this place; made at the first call.
  void* place(NPP instance, int32_t x, int32_t y, uint32_t width, uint32_t height);
  void remove(NPP instance);
  // What the instance's window shows: rows from the top, 32 bits a pixel, blue in the lowest byte.
  // Empty if it has no window.
  struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
  };
  Picture picture(NPP instance);

  // Drags files, by their paths on the host system, with the mouse from the top-level window's edge
  // to this place of the page and lets them go there. False if the drag did not go that way.
  bool drop(int x, int y, const std::vector<std::string>& paths);

  // Dispatches messages and serves the bridge until quit() is called.
  void run();
  void quit();

 private:
  void* top_ = nullptr;
};

}  // namespace engine
