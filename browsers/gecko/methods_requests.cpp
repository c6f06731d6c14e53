// Script methods: requests that the page forwards to the desktop client.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/page_callbacks.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::vantrelHttpRequest(Arguments args, NPVariant* result) {
  std::string error;
  std::unique_ptr<HttpResponse> response;
  core->vantrelHttpRequest(error, textOf(args[0]), textOf(args[1]), textOf(args[2]), response);
  stringToVariant(response && error.empty() ? response->body() : error, result);
  return true;
}

bool ovOrvaneWebPlugin::vantrelHttpRequestAsync(Arguments args, NPVariant* result) {
  const std::string error = core->vantrelHttpRequestAsync(
      textOf(args[0]), textOf(args[1]), textOf(args[2]),
      std::make_unique<RequestCallback>(npp_, args[3].value.objectValue));
  if (error.empty()) {
    setNull(result);
  } else {
    stringToVariant(error, result);
  }
  return true;
}

bool ovOrvaneWebPlugin::httpRequestImplementation(Arguments args, NPVariant* result) {
  core->httpRequestImplementation(
      textOf(args[0]), textOf(args[1]), textOf(args[2]),
      std::make_unique<RequestCallback>(npp_, args[3].value.objectValue));
  setNull(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
