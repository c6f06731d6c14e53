// The NPP_* functions, which the browser calls for an instance. Browser's thread only; none lets an
// exception out.
#pragma once

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

// Fills the browser's table with them. Returns an NPError.
NPError OW_PopulatePluginFunctionTable(NPPluginFuncs* funcs);

}  // namespace Vantrel::Web::Gecko
