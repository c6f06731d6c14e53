// The host of the page that embeds an instance. Browser's thread only.
#pragma once

#include <string>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

// window.location.hostname, or "localhost" when that is empty or cannot be had.
std::string pageHostname(NPP npp);

}  // namespace Vantrel::Web::Gecko
