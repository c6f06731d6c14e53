// Answers on their way to page functions: of a forwarded request, and of an asynchronous dialog.
//
// A page function is retained once when the script method is called and released once when it has
// been called, both on the browser's thread, so no other thread touches a reference count. One that
// ends the instance itself is released all the same, when it returns. An answer that never comes,
// or comes when the browser has taken its objects away with the instance, leaves the count as it
// is.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/browser_functions.h"
#include "dialogs/file_dialog.h"
#include "threads/callback.h"

namespace Vantrel::Web::Gecko {

// A text for one call of a page function.
class StringCallbackMessage : public AsyncCall {
 public:
  // Browser's thread, as deliver(). Takes the caller's reference.
  StringCallbackMessage(NPP instance, RetainedObject function)
      : callbackObject_(std::move(function)), npp_(instance) {}
  // Any thread.
  ~StringCallbackMessage() override { static_cast<void>(callbackObject_.forget()); }

  void setText(const std::string& text) { text_ = text; }

  // Calls the page function with the text and gives the reference back.
  void deliver() override;

 private:
  RetainedObject callbackObject_;
  std::string text_;
  NPP npp_;
};

// Made on the browser's thread inside the script method, owned by its HttpRequest, called on the
// RequestWorker's thread. Delivers at most one answer.
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

// Records what the user chose and brings it to the page. Made inside the script method, owned by
// the scheduler, called on the browser's thread; at most one answer. A dialog may outlive its
// instance, which it can tell by the instance's life.
class DialogCallback : public Callback {
 public:
  DialogCallback(NPP instance, std::weak_ptr<bool> life, NPObject* function, DialogKind kind);
  ~DialogCallback() override;

  // `argument` is the finished dialog's `Runnable*`, which is a FileDialog.
  void handleCallback(void* argument) override;
  void returnMessage(const std::string& text) override;

 private:
  void recordChoice(const std::vector<std::string>& chosen) const;

  RetainedObject callbackObject_;
  NPP npp_;  // not looked at once the instance is gone
  std::weak_ptr<bool> life_;
  DialogKind dialogKind_;
};

}  // namespace Vantrel::Web::Gecko
