#include "service/vantrel_request.h"

#include "service/locations.h"
#include "service/service_url.h"

namespace Vantrel::Web {

std::unique_ptr<HttpRequest> newVantrelRequest(int format) {
  const Url url = vantrelUrl();
  if (url.url.empty()) return nullptr;
  auto request = std::make_unique<HttpRequest>(url.host, url.port(0));
  request->addHeader("Authorization-key", vantrelUuid());
  request->addHeader(kHeaderContentType, format == kFormatXml ? kMediaTypeXml : kMediaTypeJson);
  return request;
}

std::unique_ptr<HttpRequest> newVantrelRequest(const std::string& method, const std::string& path,
                                               const std::string& body, int format) {
  auto request = newVantrelRequest(format);
  if (!request) return nullptr;
  request->method = method;
  request->path = path;
  request->setBody(body);
  return request;
}

}  // namespace Vantrel::Web
