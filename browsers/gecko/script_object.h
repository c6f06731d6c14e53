// The object through which page script reaches an instance. Browser's thread only; no exception
// leaves its functions. It outlives the instance, and then answers false to everything but
// questions about names.
#pragma once

#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

class ovOrvaneWebPlugin;

struct ovOrvaneWebScriptObject : NPObject {
  ovOrvaneWebPlugin* plugin;  // null before the instance has written it and once it is gone
};

// The table for NPN_CreateObject, the same for all instances.
NPClass* scriptClass();

}  // namespace Vantrel::Web::Gecko
