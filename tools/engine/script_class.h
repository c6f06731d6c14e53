// Class tables of the plug-in's script objects, as the engine can call them.
//
// An object is shared as it is; only its class table is replaced, by one whose functions run those
// of the plug-in's table on the plug-in's thread. One replacement per table of the plug-in, kept
// until the process ends, because the engine may hold an object for as long.
#pragma once

#include "plugin_abi.h"

namespace engine {

// The table to create an object of this class with; any thread.
NPClass* engineClass(NPClass* pluginClass);

}  // namespace engine
