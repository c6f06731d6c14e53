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
      : handler(std::move(receiver)), text(std::move(payload)) {}

  void deliver() override {
    NPP npp = nullptr;
    NPObject* target = nullptr;
    // Only for this moment: the page function may end the instance.
    if (const std::shared_ptr<TransferEventHandler*> receiver = handler.lock()) {
      npp = (*receiver)->npp;
      target = (*receiver)->target;
    }
    sendEvent(npp, target, PageEvent::kTransfer, text);
  }

 private:
  std::weak_ptr<TransferEventHandler*> handler;
  std::string text;
};

}  // namespace

TransferEventHandler::TransferEventHandler(NPP instance, NPObject* function)
    : EventHandler(instance, function), self(std::make_shared<TransferEventHandler*>(this)) {
  OV_DEBUG("TransferEventHandler() [%p]", static_cast<void*>(this));
}

TransferEventHandler::~TransferEventHandler() {
  OV_DEBUG("~TransferEventHandler() [%p]", static_cast<void*>(this));
}

void TransferEventHandler::setTarget(NPObject* function) {
  target = function;
  keptTarget.reset();
}

void TransferEventHandler::keepTarget(NPObject* function) {
  if (target == function && !keptTarget) keptTarget = RetainedObject(function);
}

void TransferEventHandler::transferEventOccurred(const std::string& text) {
  try {
    if (target) postToBrowser(npp, std::make_unique<TransferEvent>(self, text));
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
}

}  // namespace Vantrel::Web::Gecko
