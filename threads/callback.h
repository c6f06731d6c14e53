// The receiver of one answer. A request's callback is owned by its HttpRequest and is called on the
// RequestWorker's thread under that worker's lock, or on the same thread without the lock when the
// client could not be launched; a dialog's callback is owned by the scheduler and is called on the
// browser's thread. Either must be quick and must not call back into its caller.
#pragma once

#include <string>

namespace Vantrel::Web {

class Callback {
 public:
  virtual ~Callback() = default;

  // The one answer. For a request: a `const HttpResponse*`, or null when the client gave no useful
  // reply; it is only read, and only until this call returns. For a dialog: its `Runnable*`.
  virtual void handleCallback(void* argument) = 0;

  // Hands `text` to the page, on the browser's thread at a later moment.
  virtual void returnMessage(const std::string& text) = 0;

 protected:
  Callback() = default;
  Callback(const Callback&) = default;
  Callback& operator=(const Callback&) = default;
};

}  // namespace Vantrel::Web
