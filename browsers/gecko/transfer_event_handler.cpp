#include "browsers/gecko/transfer_event_handler.h"

#include <exception>
#include <utility>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/page_calls.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

namespace {

// One event on its way. Delivered to whatever the handler's target is by then.
class TransferEvent : public AsyncCall {
 public:
  TransferEvent(std::weak_ptr<TransferEventHandler*> receiver, std::string payload)
      : handler_(std::move(receiver)), text_(std::move(payload)) {}

  void deliver() override {
    NPP npp = nullptr;
    NPObject* target = nullptr;
    // Only for this moment: the page function may end the instance.
    if (const std::shared_ptr<TransferEventHandler*> receiver = handler_.lock()) {
      npp = (*receiver)->npp;
      target = (*receiver)->target;
    }
    sendEvent(npp, target, PageEvent::kTransfer, text_);
  }

 private:
  std::weak_ptr<TransferEventHandler*> handler_;
  std::string text_;
};

}  // namespace

TransferEventHandler::TransferEventHandler(NPP instance, NPObject* function)
    : EventHandler(instance, function), self_(std::make_shared<TransferEventHandler*>(this)) {
  OV_DEBUG("TransferEventHandler() [%p]", static_cast<void*>(this));
}

TransferEventHandler::~TransferEventHandler() {
  OV_DEBUG("~TransferEventHandler() [%p]", static_cast<void*>(this));
}

void TransferEventHandler::setTarget(NPObject* function) {
  target = function;
  keptTarget_.reset();
}

void TransferEventHandler::keepTarget(NPObject* function) {
  if (target == function && !keptTarget_) keptTarget_ = RetainedObject(function);
}

void TransferEventHandler::transferEventOccurred(const std::string& text) {
  try {
    if (target != nullptr) postToBrowser(npp, std::make_unique<TransferEvent>(self_, text));
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
}

}  // namespace Vantrel::Web::Gecko
