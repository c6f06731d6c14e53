// Calls of the page's functions. The apartment's thread only. Each may run script that ends the
// control; what a function returns, and whether it fails, is its own affair.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <string>

#include "browsers/shared/page_events.h"

namespace Vantrel::Web::ActiveX {

// Calls the function with one text; nothing for null.
void invokeDispatch(IDispatch* function, const std::string& text);

// Calls it with the event's name and the payload.
void sendDispatchEvent(IDispatch* function, PageEvent event, const std::string& payload);

}  // namespace Vantrel::Web::ActiveX
