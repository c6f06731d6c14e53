// Carries the answer of a forwarded request to the page function that waits for it. Made on the
// browser's thread inside the script method, owned by its HttpRequest, called on the
// RequestWorker's thread. Delivers at most one answer.
#pragma once

#include <memory>
#include <string>

#include "browsers/gecko/netscape_plugin_api.h"
#include "browsers/gecko/string_callback_message.h"
#include "threads/callback.h"

namespace Vantrel::Web::Gecko {

class RequestCallback : public Callback {
 public:
  RequestCallback(NPP instance, NPObject* function);

  // `argument` is a `const HttpResponse*`; null stands for a client that did not answer. Lets no
  // exception out, as a worker calls it.
  void handleCallback(void* argument) override;
  void returnMessage(const std::string& text) override;

 private:
  std::unique_ptr<StringCallbackMessage> message_;  // until it is handed over
  NPP npp_;
};

}  // namespace Vantrel::Web::Gecko
