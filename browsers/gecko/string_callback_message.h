// A text on its way to a page function. It holds a reference to the function from its making on the
// browser's thread until its delivery there, so no other thread ever touches a reference count.
#pragma once

#include <string>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/browser_functions.h"

namespace Vantrel::Web::Gecko {

class StringCallbackMessage : public AsyncCall {
 public:
  // Browser's thread.
  StringCallbackMessage(NPP instance, NPObject* function)
      : callbackObject(function), npp(instance) {}
  // An undelivered message leaves its reference on the page object as it is: this may be any
  // thread, or the browser may have taken the object away with its instance.
  ~StringCallbackMessage() override { static_cast<void>(callbackObject.forget()); }

  // Calls the page function with the text and gives the reference back.
  void deliver() override;

  RetainedObject callbackObject;
  std::string text;
  NPP npp;
};

}  // namespace Vantrel::Web::Gecko
