// The engine's request to draw an instance: an event of the X window system that names a drawable.
#pragma once

#include "plugin_windows.h"

namespace engine {

bool isPaintEvent(const void* event);

// Puts the picture into the event's drawable. Engine's thread. False if there is nothing to draw.
bool paint(const void* event, const PluginWindows::Picture& picture);

}  // namespace engine
