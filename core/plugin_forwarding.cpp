// Requests that a page forwards to the desktop client, and the client's windows.

#include <new>
#include <utility>

#include "core/plugin.h"
#include "core/request_check.h"
#include "runtime/ov_log.h"
#include "service/launch.h"
#include "service/locations.h"
#include "service/vantrel_request.h"
#include "service/window.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web {

namespace {

constexpr char kEmptyBody[] = "{}";
constexpr char kVersionPath[] = "/v4/vantrel/version";
constexpr char kVersionBody[] = R"({"orvane_vantrel_settings":{"app_id":"version request"}})";

std::string bodyToSend(std::string body) {
  if (body.empty()) body = kEmptyBody;
  return body;
}

// A request as a page asks for it, without the client's key; null when memory runs out or when the
// first line could not hold it.
std::unique_ptr<HttpRequest> newForwardedRequest(const Url& url, const std::string& method,
                                                 const std::string& path, std::string body) {
  if (!fitsRequestLine(method) || !fitsRequestLine(path)) return nullptr;
  try {
    auto request = std::make_unique<HttpRequest>(url.host, url.port(0));
    request->addHeader(kHeaderContentType, kMediaTypeForwarded);
    request->path = path;
    request->method = method;
    request->setBody(std::move(body));
    return request;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

template <class W>
bool display() {
  allowVantrelForeground();
  return W().display("");
}

}  // namespace

bool Plugin::validateRequestBody(const std::string& body, std::string& error) const {
  const HostnameCheck check = [this](const std::string& id) { return validateHostname(id); };
  return checkRequestBody(body, check, consent_, error);
}

void Plugin::vantrelHttpRequest(std::string& error, const std::string& method,
                                const std::string& path, std::string body,
                                std::unique_ptr<HttpResponse>& response) {
  response.reset();
  std::string text = bodyToSend(std::move(body));
  if (!validateRequestBody(text, error)) return;
  const Contact contact = askVantrel(method, path, std::move(text), kFormatJson, response);
  if (contact == Contact::kAnswered) return;
  const char* const reason = contactError(contact);
  error = contact == Contact::kNoRequest ? jsonErrorReply(reason) : logJsonErrorReply(reason);
}

std::string Plugin::vantrelHttpRequestAsync(const std::string& method, const std::string& path,
                                            std::string body, std::unique_ptr<Callback> callback) {
  std::string text = bodyToSend(std::move(body));
  std::string error;
  if (!validateRequestBody(text, error)) return error;
  std::unique_ptr<HttpRequest> request =
      newVantrelRequest(method, path, std::move(text), kFormatJson);
  if (!request) return jsonErrorReply(kErrorCreatingRequest);
  request->callback = std::move(callback);
  requestWorker_->addRequest(std::move(request));
  return {};
}

void Plugin::httpRequestImplementation(const std::string& method, const std::string& path,
                                       std::string body, std::unique_ptr<Callback> callback) {
  const Url url = vantrelUrl();
  if (url.url.empty()) {
    callback->returnMessage(jsonErrorReply("Failed to get Vantrel URL"));
    return;
  }
  std::unique_ptr<HttpRequest> request =
      newForwardedRequest(url, method, path, bodyToSend(std::move(body)));
  if (!request) {
    callback->returnMessage(jsonErrorReply(kErrorCreatingRequest));
    return;
  }
  request->callback = std::move(callback);
  requestWorker_->addRequest(std::move(request));
}

std::string Plugin::queryVantrelVersion() {
  std::string error;
  std::unique_ptr<HttpResponse> response;
  vantrelHttpRequest(error, "GET", kVersionPath, kVersionBody, response);
  if (!error.empty()) return error;
  std::string body = response ? response->takeBody() : std::string();
  return body.empty() ? jsonErrorReply(kErrorRetrievingVersion) : body;
}

bool Plugin::displayTransferManager() {
  return display<TransferManagerWindow>();
}
bool Plugin::displayAboutWindow() {
  return display<AboutWindow>();
}
bool Plugin::displayPreferencesWindow() {
  return display<PreferencesWindow>();
}

}  // namespace Vantrel::Web
