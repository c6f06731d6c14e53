// The check of a JSON body that a page wants forwarded to the desktop client. Browser's thread
// only.
#pragma once

#include <functional>
#include <string>

#include "core/destination_consent.h"

namespace Vantrel::Web {

// Returns an empty text when `appId` may be used on this page, otherwise an error reply.
using HostnameCheck = std::function<std::string(const std::string& appId)>;

// Whether the body may go to the client. On false, `error` holds the reply for the page. Only the
// first transfer specification is looked at; the body itself is never changed.
bool checkRequestBody(const std::string& body, const HostnameCheck& validateHostname,
                      const DestinationConsent& consent, std::string& error);

}  // namespace Vantrel::Web
