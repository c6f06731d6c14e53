#include "browsers/gecko/page_callbacks.h"

#include <exception>

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/page_calls.h"
#include "core/approved_files.h"
#include "core/plugin.h"
#include "runtime/ov_log.h"
#include "service/http_response.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {

void StringCallbackMessage::deliver() {
  OV_DEBUG("callbackBrowser - msg=%s", text_.c_str());
  callPage(npp_, callbackObject_.get(), text_);
  callbackObject_.reset();
}

RequestCallback::RequestCallback(NPP instance, NPObject* function)
    : message_(std::make_unique<StringCallbackMessage>(instance, RetainedObject(function))),
      npp_(instance) {}

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
  message_->setText(text);
  postToBrowser(npp_, std::move(message_));
}

DialogCallback::DialogCallback(NPP instance, std::weak_ptr<bool> life, NPObject* function,
                               DialogKind kind)
    : callbackObject_(function), npp_(instance), life_(std::move(life)), dialogKind_(kind) {}

DialogCallback::~DialogCallback() {
  if (life_.expired()) static_cast<void>(callbackObject_.forget());
}

void DialogCallback::handleCallback(void* argument) {
  const auto* const dialog = static_cast<FileDialog*>(static_cast<Runnable*>(argument));
  const auto result = static_cast<unsigned long>(dialog->result());
  const std::string text = dialog->resultText();
  OV_DEBUG("DialogCallback::handleCallback() - result=%lu resultStr=%s", result, text.c_str());
  if (result == 0) return;
  recordChoice(dialog->chosenPaths());
  returnMessage(text);
}

void DialogCallback::recordChoice(const std::vector<std::string>& chosen) const {
  if (chosen.empty()) return;
  if (dialogKind_ != DialogKind::kSaveFile) addToApprovedFileList(chosen);
  if (dialogKind_ == DialogKind::kOpenFile || life_.expired()) return;
  const auto* const plugin = static_cast<ovOrvaneWebPlugin*>(npp_->pdata);
  if (plugin != nullptr) plugin->core->setLastSelectedPath(chosen.front());
}

void DialogCallback::returnMessage(const std::string& text) {
  if (!callbackObject_ || life_.expired()) return;
  OV_DEBUG("RequestCallback::returnMessage() - response=%s", text.c_str());
  StringCallbackMessage message(npp_, std::move(callbackObject_));
  message.setText(text);
  message.deliver();
}

}  // namespace Vantrel::Web::Gecko
