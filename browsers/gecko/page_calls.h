// Calls of page functions. Browser's thread only. A page function's failure is the page's own
// business: nothing is logged and nothing is retried.
#pragma once

#include <string>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

// Numbers of the events of the page.
enum class PageEvent { kDrop = 0, kDropEx = 1, kTransfer = 2, kDragLeave = 3, kDragOver = 4 };

// The event's name as the page sees it.
const char* pageEventName(PageEvent event);

// Calls function(text).
void callPage(NPP npp, NPObject* function, const std::string& text);

// Calls object.method(text) if `object` is not null and has such a method.
void callMethod(NPP npp, NPObject* object, const char* method, const std::string& text);

// Calls target(name of the event, payload); a null target is no call.
void sendEvent(NPP npp, NPObject* target, PageEvent event, const std::string& payload);

}  // namespace Vantrel::Web::Gecko
