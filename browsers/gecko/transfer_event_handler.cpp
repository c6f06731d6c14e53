#include "browsers/gecko/transfer_event_handler.h"

#include <utility>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/page_calls.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"

namespace Vantrel::Web::Gecko {

// One event on its way. Delivered to whatever the handler's target is by then.
class TransferEventHandler::Event : public AsyncCall {
 public:
  Event(std::weak_ptr<TransferEventHandler*> receiver, std::string payload)
      : handler_(std::move(receiver)), text_(std::move(payload)) {}

  void deliver() override {
    NPP npp = nullptr;
    NPObject* target = nullptr;
    // Only for this moment: the page function may end the instance.
    if (const std::shared_ptr<TransferEventHandler*> receiver = handler_.lock()) {
      npp = (*receiver)->npp_;
      target = (*receiver)->target_;
    }
    sendEvent(npp, target, PageEvent::kTransfer, text_);
  }

 private:
  std::weak_ptr<TransferEventHandler*> handler_;
  std::string text_;
};

TransferEventHandler::TransferEventHandler(NPP instance, NPObject* function)
    : npp_(instance), target_(function), self_(std::make_shared<TransferEventHandler*>(this)) {
  OV_DEBUG("TransferEventHandler() [%p]", static_cast<void*>(this));
}

TransferEventHandler::~TransferEventHandler() {
  OV_DEBUG("~TransferEventHandler() [%p]", static_cast<void*>(this));
}

void TransferEventHandler::setTarget(NPObject* function) {
  target_ = function;
  keptTarget_.reset();
}

void TransferEventHandler::keepTarget(NPObject* function) {
  if (target_ == function && !keptTarget_) keptTarget_ = RetainedObject(function);
}

void TransferEventHandler::transferEventOccurred(const std::string& text) {
  guarded([this, &text] {
    if (target_ != nullptr) postToBrowser(npp_, std::make_unique<Event>(self_, text));
  });
}

}  // namespace Vantrel::Web::Gecko
