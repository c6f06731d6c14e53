#include "browsers/gecko/page_hostname.h"

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/variant.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::Gecko {

namespace {

// The property, or a void variant. What the browser hands out here is not released.
NPVariant property(NPP npp, NPObject* object, const char* name) {
  NPVariant value = {NPVariantType_Void, {}};
  if (!browserFuncs.getproperty(npp, object, browserFuncs.getstringidentifier(name), &value)) {
    value = {NPVariantType_Void, {}};
  }
  return value;
}

std::string locationHostname(NPP npp) {
  NPObject* window = nullptr;
  if (browserFuncs.getvalue(npp, NPNVWindowNPObject, &window) != NPERR_NO_ERROR ||
      window == nullptr) {
    return {};
  }
  const NPVariant location = property(npp, window, "location");
  if (location.type != NPVariantType_Object || location.value.objectValue == nullptr) return {};
  return countedTextOf(property(npp, location.value.objectValue, "hostname"));
}

}  // namespace

std::string pageHostname(NPP npp) {
  std::string hostname = locationHostname(npp);
  if (hostname.empty()) hostname = "localhost";
  ov_log("Hostname: %s", hostname.c_str());
  return hostname;
}

}  // namespace Vantrel::Web::Gecko
