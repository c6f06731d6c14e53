#include "browsers/activex/callbacks_win.h"

#include <exception>

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "browsers/activex/page_calls_win.h"
#include "core/approved_files.h"
#include "runtime/ov_log.h"
#include "service/http_response.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::ActiveX {

void StringCallbackMessage::deliver() {
  invokeDispatch(dispatch_.get(), text_);
}

bool StringCallbackMessage::abandon() noexcept {
  std::string().swap(text_);
  return static_cast<bool>(dispatch_);
}

void TransferEvent::deliver() {
  sendDispatchEvent(control_.eventHandler(), PageEvent::kTransfer, text_);
}

RequestCallback::RequestCallback(Deliveries& deliveries, IDispatch* function)
    : deliveries_(deliveries), message_(std::make_unique<StringCallbackMessage>(function)) {}

RequestCallback::~RequestCallback() {
  if (message_) deliveries_.discard(std::move(message_));
}

void RequestCallback::handleCallback(void* argument) {
  try {
    const auto* const response = static_cast<const HttpResponse*>(argument);
    returnMessage(response != nullptr ? response->body() : jsonErrorReply(kErrorContacting));
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
}

void RequestCallback::returnMessage(const std::string& text) {
  OV_DEBUG("RequestCallback::returnError() - response=%s", text.c_str());
  if (!message_) return;
  message_->setText(text);
  deliveries_.post(std::move(message_));
}

DialogCallback::DialogCallback(COrvaneWebCtrl& control, IDispatch* function, DialogKind kind)
    : control_(control), life_(control.life()), dialogKind_(kind) {
  control_.holdForDialog(this, function);
}

DialogCallback::~DialogCallback() {
  if (!life_.expired()) static_cast<void>(control_.takeFromDialog(this));
}

void DialogCallback::handleCallback(void* argument) {
  const auto* const dialog = static_cast<FileDialog*>(static_cast<Runnable*>(argument));
  recordChoice(dialog->chosenPaths());
  returnMessage(dialog->resultText());
}

void DialogCallback::recordChoice(const std::vector<std::string>& chosen) const {
  if (chosen.empty()) return;
  if (dialogKind_ != DialogKind::kSaveFile) addToApprovedFileList(chosen);
  if (dialogKind_ != DialogKind::kOpenFile && !life_.expired()) {
    control_.core().setLastSelectedPath(chosen.front());
  }
}

void DialogCallback::returnMessage(const std::string& text) {
  OV_DEBUG("DialogCallback::returnMessage() - result=%s", text.c_str());
  if (life_.expired()) return;
  const ComPointer<IDispatch> function = control_.takeFromDialog(this);
  invokeDispatch(function.get(), text);
}

}  // namespace Vantrel::Web::ActiveX
