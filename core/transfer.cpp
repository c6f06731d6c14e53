#include "core/transfer.h"

#include <memory>

#include "runtime/ov_log.h"
#include "service/launch.h"
#include "service/vantrel_request.h"
#include "text/error_texts.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

constexpr char kTransfersPath[] = "/transfers/";

}  // namespace

std::string Transfer::document() const {
  std::string text = "<xferreq xmlns=\"";
  text.append(kXferreqNamespace).append("\">");
  for (const std::string& file : files_) {
    if (!file.empty()) text.append("<src>").append(xmlEscape(file)).append("</src>");
  }
  if (!destination_.empty())
    text.append("<dest>").append(xmlEscape(destination_)).append("</dest>");
  // The client's own form of a parameter, with one quotation mark and no end tag.
  for (const auto& [key, value] : parameters_) {
    text.append("<param name=\"").append(key).append(" value=\"").append(value).append("\">");
  }
  return text.append("</xferreq>");
}

bool Transfer::post() const {
  if (!launchVantrel()) {
    ov_err("%s", kErrorContacting);
    return false;
  }
  std::unique_ptr<HttpRequest> request =
      newVantrelRequest("POST", kTransfersPath, document(), kFormatXml);
  if (!request) {
    ov_err("%s", kErrorCreatingRequest);
    return false;
  }
  const std::unique_ptr<HttpResponse> response = request->invoke();
  request.reset();
  if (!response) ov_err("%s", kErrorContacting);
  return response != nullptr;
}

}  // namespace Vantrel::Web
