// The object through which page script reaches an instance. Browser's thread only; no exception
// leaves its functions. It outlives the instance, and then answers false to everything but
// questions about names.
#pragma once

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

class ovOrvaneWebPlugin;

struct ovOrvaneWebScriptObject : NPObject {
  ovOrvaneWebPlugin* plugin;  // null before the instance has written it and once it is gone
};

// A table for one NPN_CreateObject, of the instance's own: a browser may keep notes by the table's
// address. Neither the table nor an object made by it is ever freed. Throws std::bad_alloc.
NPClass* createScriptClass();

}  // namespace Vantrel::Web::Gecko
