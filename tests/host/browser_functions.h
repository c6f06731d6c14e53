// The functions of the browser as the plug-in gets them; each one works on CountingHost::current().
#pragma once

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Host {

// Fills every member. One that no plug-in of ours needs is a function that reports its use.
void fillBrowserFunctions(NPNetscapeFuncs& table);

}  // namespace Vantrel::Web::Host
