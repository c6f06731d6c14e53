#include "browsers/gecko/request_callback.h"

#include <exception>

#include "runtime/ov_log.h"
#include "service/http_response.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {

RequestCallback::RequestCallback(NPP instance, NPObject* function)
    : message_(std::make_unique<StringCallbackMessage>(instance, function)), npp_(instance) {}

void RequestCallback::handleCallback(void* argument) {
  try {
    const auto* const response = static_cast<const HttpResponse*>(argument);
    returnMessage(response != nullptr ? response->body() : jsonErrorReply(kErrorContacting));
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
    message_.reset();
  }
}

void RequestCallback::returnMessage(const std::string& text) {
  OV_DEBUG("RequestCallback::returnMessage() - response=%s", text.c_str());
  if (!message_) return;
  message_->text = text;
  postToBrowser(npp_, std::move(message_));
}

}  // namespace Vantrel::Web::Gecko
