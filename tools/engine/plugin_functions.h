// The plug-in's functions for the engine: the table that the engine is given holds native
// functions that run those of the library on the plug-in's thread.
#pragma once

#include <string>
#include <vector>

#include "plugin_abi.h"
#include "plugin_module.h"
#include "plugin_windows.h"

namespace engine {

// Module and windows must live until the engine's thread has ended.
void usePlugin(PluginModule& module, PluginWindows& windows);

// NP_Initialize of the engine: starts the library with the engine's functions and fills the
// engine's table. Engine's thread.
NPError startPlugin(const NPNetscapeFuncs* browser, NPPluginFuncs* plugin);

// A drag of files with the mouse to this place of the page; false if it did not go there. Engine's
// thread.
bool dropFiles(int x, int y, const std::vector<std::string>& paths);

// Instances made so far, and those that have been made and not destroyed. Engine's thread.
unsigned instancesMade();
unsigned instancesAlive();

}  // namespace engine
