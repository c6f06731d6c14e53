// Answers on their way to page functions: of a forwarded request, of an asynchronous dialog, and of
// the activity poll.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "browsers/activex/deliveries_win.h"
#include "dialogs/dialog_com_win.h"
#include "dialogs/file_dialog.h"
#include "threads/callback.h"

namespace Vantrel::Web::ActiveX {

class COrvaneWebCtrl;

// A text for one call of a page function. Made on the control's thread, which alone counts the
// function's references.
class StringCallbackMessage : public Delivery {
 public:
  explicit StringCallbackMessage(IDispatch* function) : dispatch_(function) {}
  void setText(const std::string& text) { text_ = text; }
  void deliver() override;
  bool abandon() noexcept override;

 private:
  ComPointer<IDispatch> dispatch_;
  std::string text_;
};

// An activity of the transfers, for whatever the page's handler is when its turn comes.
class TransferEvent : public Delivery {
 public:
  // The control owns all its deliveries.
  TransferEvent(COrvaneWebCtrl& control, std::string text)
      : control_(control), text_(std::move(text)) {}
  void deliver() override;
  bool abandon() noexcept override { return false; }

 private:
  COrvaneWebCtrl& control_;
  const std::string text_;
};

// Made on the control's thread inside the method, owned by its HttpRequest, called on the
// RequestWorker's thread. Delivers at most one answer. The control joins that thread before its
// deliveries go.
class RequestCallback : public Callback {
 public:
  RequestCallback(Deliveries& deliveries, IDispatch* function);
  ~RequestCallback() override;
  RequestCallback(const RequestCallback&) = delete;
  RequestCallback& operator=(const RequestCallback&) = delete;

  // `argument` is a `const HttpResponse*`; null stands for a client that did not answer. Lets no
  // exception out, as a worker calls it.
  void handleCallback(void* argument) override;
  void returnMessage(const std::string& text) override;

 private:
  Deliveries& deliveries_;
  std::unique_ptr<StringCallbackMessage> message_;  // until it is handed over
};

// Records what the user chose and brings it to the page. Made inside the method, owned by the
// scheduler, called on the control's thread; at most one answer. A dialog may outlive its control,
// which holds the page's function for it.
class DialogCallback : public Callback {
 public:
  DialogCallback(COrvaneWebCtrl& control, IDispatch* function, DialogKind kind);
  ~DialogCallback() override;
  DialogCallback(const DialogCallback&) = delete;
  DialogCallback& operator=(const DialogCallback&) = delete;

  // `argument` is the finished dialog's `Runnable*`, which is a FileDialog.
  void handleCallback(void* argument) override;
  void returnMessage(const std::string& text) override;

 private:
  void recordChoice(const std::vector<std::string>& chosen) const;

  COrvaneWebCtrl& control_;  // not looked at once it is gone
  const std::weak_ptr<bool> life_;
  const DialogKind dialogKind_;
};

}  // namespace Vantrel::Web::ActiveX
