// The plug-in's thread: its hidden windows and its message loop. One hidden top-level window stands
// for the browser's; every instance has a child of it. Owned by main(); all calls are for the
// plug-in's thread.
#pragma once

#include <cstdint>

#include "plugin_abi.h"

namespace engine {

class PluginWindows {
 public:
  // Makes the calling thread the plug-in's thread: creates the top-level window and attaches the
  // thread to the bridge. False if there are no windows here.
  bool create();

  // The top-level window's handle.
  void* topLevel() const { return top; }
  // The instance's child window at this place; made at the first call.
  void* place(NPP instance, int32_t x, int32_t y, uint32_t width, uint32_t height);
  void remove(NPP instance);

  // Dispatches messages and serves the bridge until quit() is called.
  void run();
  void quit();

 private:
  void* top = nullptr;
};

}  // namespace engine
