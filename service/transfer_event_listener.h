// The receiver of transfer activity. Not owned by the poller: whoever adds a listener removes it
// before it goes.
#pragma once

#include <string>

namespace Vantrel::Web {

class TransferEventListener {
 public:
  // `text` is the client's whole JSON reply. Called on the poller's thread under the poller's lock:
  // it only copies and posts the text, and adds or removes no listener.
  virtual void transferEventOccurred(const std::string& text) = 0;

 protected:
  TransferEventListener() = default;
  TransferEventListener(const TransferEventListener&) = default;
  TransferEventListener& operator=(const TransferEventListener&) = default;
  ~TransferEventListener() = default;
};

}  // namespace Vantrel::Web
