// The cached address of the local service. One lock guards it; it is handed out as a copy and never
// held across an exchange. Any thread.
#pragma once

#include "service/url.h"

namespace Vantrel::Web {

// The service's address, read from the client's file if none is cached. Its `url` is empty when it
// is not known. Never throws.
Url vantrelUrl();

// Forgets the address, so that the next call reads the file.
void clearVantrelUrl();

}  // namespace Vantrel::Web
