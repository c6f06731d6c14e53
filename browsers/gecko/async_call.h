// Work that is handed to the browser's thread with NPN_PluginThreadAsyncCall.
//
// A record owns itself from the hand-over until the browser runs it. A browser may never run it,
// once the instance is gone; what is left is freed when the module ends.
#pragma once

#include <memory>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

class AsyncCall {
 public:
  // Deletes memory only: page objects may be touched by deliver() alone.
  virtual ~AsyncCall() = default;
  AsyncCall(const AsyncCall&) = delete;
  AsyncCall& operator=(const AsyncCall&) = delete;

  // Does the work, on the browser's thread.
  virtual void deliver() = 0;

 protected:
  AsyncCall() = default;
};

// Any thread.
void postToBrowser(NPP npp, std::unique_ptr<AsyncCall> call);

// Frees the calls that the browser has not run. At the end of the module, on the browser's thread.
void freeUndeliveredCalls();

}  // namespace Vantrel::Web::Gecko
