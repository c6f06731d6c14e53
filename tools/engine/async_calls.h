// Calls that the plug-in's worker threads leave with the engine (NPN_PluginThreadAsyncCall). The
// engine drops such a call without a word once the instance is gone; the records are kept here so
// that the dropped ones can be counted.
#pragma once

#include <cstddef>

#include "plugin_abi.h"

namespace engine {

// NPN_PluginThreadAsyncCall as the plug-in calls it; any thread.
void NP_ABI pluginThreadAsyncCall(NPP npp, NPAsyncCallFunction function, void* argument);

// Calls that were handed to the engine and have not run.
size_t undeliveredAsyncCalls();

}  // namespace engine
