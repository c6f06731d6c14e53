#include "service/vantrel_request.h"

#include <utility>

#include "service/launch.h"
#include "service/locations.h"
#include "text/error_texts.h"

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
                                               std::string body, int format) {
  if (!fitsRequestLine(method) || !fitsRequestLine(path)) return nullptr;
  auto request = newVantrelRequest(format);
  if (!request) return nullptr;
  request->method = method;
  request->path = path;
  request->setBody(std::move(body));
  return request;
}

const char* contactError(Contact contact) {
  switch (contact) {
    case Contact::kAnswered:
      return "";
    case Contact::kNoRequest:
      return kErrorCreatingRequest;
    case Contact::kNoClient:
    case Contact::kNoAnswer:
      break;
  }
  return kErrorContacting;
}

Contact askVantrel(const std::string& method, const std::string& path, std::string body, int format,
                   std::unique_ptr<HttpResponse>& response) {
  response.reset();
  if (!launchVantrel()) return Contact::kNoClient;
  const auto request = newVantrelRequest(method, path, std::move(body), format);
  if (!request) return Contact::kNoRequest;
  response = request->invoke();
  return response ? Contact::kAnswered : Contact::kNoAnswer;
}

}  // namespace Vantrel::Web
