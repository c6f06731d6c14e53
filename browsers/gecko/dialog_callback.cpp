#include "browsers/gecko/dialog_callback.h"

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/string_callback_message.h"
#include "core/approved_files.h"
#include "core/plugin.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

DialogCallback::DialogCallback(NPP instance, NPObject* function, DialogKind kind)
    : callbackObject_(function), npp_(instance), dialogKind_(kind) {}

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
  if (dialogKind_ == DialogKind::kOpenFile) return;
  // The dialog's message loop may have ended the instance.
  const auto* const plugin = static_cast<ovOrvaneWebPlugin*>(npp_->pdata);
  if (plugin != nullptr) plugin->core->setLastSelectedPath(chosen.front());
}

void DialogCallback::returnMessage(const std::string& text) {
  if (!callbackObject_) return;
  OV_DEBUG("RequestCallback::returnMessage() - response=%s", text.c_str());
  StringCallbackMessage message(npp_, callbackObject_.get());
  message.text = text;
  message.deliver();
}

}  // namespace Vantrel::Web::Gecko
