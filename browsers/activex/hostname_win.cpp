#include "browsers/activex/hostname_win.h"

#include <mshtml.h>

#include <exception>

#include "browsers/activex/variant_win.h"
#include "dialogs/dialog_com_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

namespace {

unsigned codeOf(HRESULT result) {
  return static_cast<unsigned>(result);
}

// What answers with a null pointer has failed as well.
bool documentLocation(IOleContainer& container, ComPointer<IHTMLLocation>& location) {
  ComPointer<IHTMLDocument2> document;
  HRESULT result = container.QueryInterface(IID_IHTMLDocument2, document.putVoid());
  if (document) result = document->get_location(location.put());
  if (SUCCEEDED(result) && location) return true;
  ov_err("Failed to get location from IHTMLDocument2: %x", codeOf(result));
  return false;
}

std::string hostnameOf(IOleClientSite* site) {
  if (site == nullptr) {
    ov_err("Failed to get client site");
    return {};
  }
  ComPointer<IOleContainer> container;
  HRESULT result = site->GetContainer(container.put());
  if (FAILED(result) || !container) {
    ov_err("Failed to get OLE container: %x", codeOf(result));
    return {};
  }
  ComPointer<IHTMLLocation> location;
  if (!documentLocation(*container.get(), location)) return {};
  BSTR text = nullptr;
  result = location->get_hostname(&text);
  const Bstr hostname(text);
  if (FAILED(result)) {
    ov_err("Failed to get hostname from IHTMLLocation: %x", codeOf(result));
    return {};
  }
  std::string found = textOf(hostname.get());
  if (found.empty()) {
    ov_log("Empty hostname. Assuming localhost.");
    found = "localhost";
  }
  ov_log("Hostname: %s", found.c_str());
  return found;
}

}  // namespace

std::string pageHostname(IOleClientSite* site) {
  try {
    return hostnameOf(site);
  } catch (const std::exception& exception) {
    ov_err("Failed to get hostname: %s", exception.what());
    return {};
  }
}

}  // namespace Vantrel::Web::ActiveX
