// Copies of this library that an earlier installation left in the browsers' per-user plug-in
// folders. Browser's thread only.
#pragma once

namespace Vantrel::Web::Gecko {

// Deletes them, so that the browser loads none of them besides this one. Failures are ignored.
void removeStalePluginCopies();

}  // namespace Vantrel::Web::Gecko
