// The engine's functions for the plug-in: every member of the table that the plug-in is given is a
// thunk that runs the engine's function on the engine's thread.
#pragma once

#include "plugin_abi.h"

namespace engine {

// The engine's own table; its members are native functions (see plugin_abi.h).
const NPNetscapeFuncs& engineFunctions();

// Keeps the engine's table, which may be shorter than ours, and returns the table for the plug-in:
// full size, zeroed, with the members that the engine has. browserWindow is what NPN_GetValue
// answers for NPNVnetscapeWindow. Called on the engine's thread, before any instance.
NPNetscapeFuncs* adoptEngineFunctions(const NPNetscapeFuncs* table, void* browserWindow);

// Calls of engine functions that were refused because they came from a thread of the plug-in that
// may not make them.
unsigned refusedCalls();

}  // namespace engine
