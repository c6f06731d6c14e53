// Calls of page functions. Browser's thread only. A page function's failure is the page's own
// business: nothing is logged and nothing is retried. It may remove the element and let the library
// go before it returns, which is what each call keeps the module loaded for.
#pragma once

#include <memory>
#include <string>

#include "browsers/gecko/netscape_plugin_api.h"
#include "browsers/shared/page_events.h"

namespace Vantrel::Web::Gecko {

// Calls function(text). The caller holds a reference on the function.
void callPage(NPP npp, NPObject* function, const std::string& text);

// Calls object.method(text) if `object` is not null and has such a method, unless the question for
// it has ended the instance, whose life that is.
void callMethod(NPP npp, const std::weak_ptr<bool>& life, NPObject* object, const char* method,
                const std::string& text);

// Calls target(name of the event, payload); a null target is no call.
void sendEvent(NPP npp, NPObject* target, PageEvent event, const std::string& payload);

}  // namespace Vantrel::Web::Gecko
