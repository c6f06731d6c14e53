#include "browsers/gecko/string_callback_message.h"

#include "browsers/gecko/page_calls.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

void StringCallbackMessage::deliver() {
  OV_DEBUG("callbackBrowser - msg=%s", text.c_str());
  callPage(npp, callbackObject.get(), text);
  callbackObject.reset();
}

}  // namespace Vantrel::Web::Gecko
