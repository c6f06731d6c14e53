// Carries the outcome of an asynchronous dialog to the page function that waits for it, and records
// what the user chose. Made inside the script method, owned by the scheduler, called on the
// browser's thread.
#pragma once

#include <string>

#include "browsers/gecko/browser_functions.h"
#include "dialogs/file_dialog.h"
#include "threads/callback.h"

namespace Vantrel::Web::Gecko {

class DialogCallback : public Callback {
 public:
  DialogCallback(NPP instance, NPObject* function, DialogKind kind);

  // `argument` is the finished dialog's `Runnable*`, which is a FileDialog.
  void handleCallback(void* argument) override;
  void returnMessage(const std::string& text) override;

 private:
  void recordChoice(const std::vector<std::string>& chosen) const;

  RetainedObject callbackObject_;
  NPP npp_;
  DialogKind dialogKind_;
};

}  // namespace Vantrel::Web::Gecko
