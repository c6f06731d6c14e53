// The name of the host of the page that a control is in.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <string>

namespace Vantrel::Web::ActiveX {

// By the page's document; the site may be null. "localhost" for a page without a host, empty for a
// container that is no page. Each failure is logged.
std::string pageHostname(IOleClientSite* site);

}  // namespace Vantrel::Web::ActiveX
