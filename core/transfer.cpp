#include "core/transfer.h"

#include <memory>

#include "runtime/ov_log.h"
#include "service/vantrel_request.h"
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
  std::unique_ptr<HttpResponse> response;
  const Contact contact = askVantrel("POST", kTransfersPath, document(), kFormatXml, response);
  if (contact != Contact::kAnswered) ov_err("%s", contactError(contact));
  return contact == Contact::kAnswered;
}

}  // namespace Vantrel::Web
