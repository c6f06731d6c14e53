// The bridge from the activity poll to the page's `eventHandler` function.
//
// Owned by its front-end instance, made and destroyed on the browser's thread.
// transferEventOccurred comes on the poller's thread; everything else on the browser's.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "browsers/gecko/browser_functions.h"
#include "service/transfer_event_listener.h"

namespace Vantrel::Web::Gecko {

class TransferEventHandler : public TransferEventListener {
 public:
  TransferEventHandler(NPP instance, NPObject* function);
  virtual ~TransferEventHandler();
  TransferEventHandler(const TransferEventHandler&) = delete;
  TransferEventHandler& operator=(const TransferEventHandler&) = delete;

  // The page's new function. The instance holds the reference.
  void setTarget(NPObject* function);
  // The instance is about to release `function`. Events keep going to it if it is the target, so it
  // is kept alive until there is another target.
  void keepTarget(NPObject* function);

  // Posts the text to the browser's thread; nothing without a target. Lets no exception out.
  void transferEventOccurred(const std::string& text) override;

 private:
  class Event;

  const NPP npp_;
  // Read by the poller's thread for its being null alone. The reference is the instance's, or
  // keptTarget_'s once the page has taken the function back.
  std::atomic<NPObject*> target_;
  RetainedObject keptTarget_;
  // What an event on its way holds of us: expired means that we are gone.
  std::shared_ptr<TransferEventHandler*> self_;
};

}  // namespace Vantrel::Web::Gecko
