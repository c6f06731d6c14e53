// Work that is handed to the browser's thread with NPN_PluginThreadAsyncCall.
//
// A record is kept here from the hand-over until the browser runs it. A browser may never run it,
// once the instance is gone, so what is left is freed with the instance.
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

// Any thread. A browser without such calls gets none.
void postToBrowser(NPP npp, std::unique_ptr<AsyncCall> call);

// Frees the instance's calls that the browser has not run; should it run one later, nothing
// happens. At the end of the instance, on the browser's thread.
void freeUndeliveredCalls(NPP npp);

}  // namespace Vantrel::Web::Gecko
