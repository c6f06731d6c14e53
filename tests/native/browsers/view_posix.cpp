// Native test builds show nothing.

#include "browsers/gecko/orvane_web_view.h"

namespace Vantrel::Web::Gecko {

std::unique_ptr<ovIOrvaneWebViewImpl> newOrvaneWebViewImpl() {
  return nullptr;
}

}  // namespace Vantrel::Web::Gecko
