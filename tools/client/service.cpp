#include "tools/client/service.h"

#include <array>

#include "tools/client/activity.h"
#include "tools/client/json_text.h"
#include "tools/client/json_tree.h"
#include "tools/client/random_text.h"
#include "tools/client/xferreq.h"

namespace Vantrel::StandIn {
namespace {

constexpr const char* kKeyHeader = "Authorization-key";
constexpr size_t kRunIdDigits = 8;

ServiceReply badRequest(const std::string& words) {
  return errorReply(400, "Invalid request", words);
}

}  // namespace

Service::Service(const Knobs& knobs, TransferFolders folders)
    : knobs_(knobs),
      folders_(std::move(folders)),
      runId_(randomHex(kRunIdDigits)),
      copier_(knobs, book_) {}

void Service::setKey(const std::string& key) {
  std::lock_guard lock(mutex_);
  key_ = key;
}

const Service::Route* Service::find(std::string_view path) {
  static constexpr std::array<Route, 9> kRoutes = {{
      {"GET", "/v5/vantrel/info/ping", false, &Service::ping},
      {"GET", "/v4/vantrel/version", true, &Service::version},
      {"GET", "/windows/transfer-manager/", true, &Service::window},
      {"GET", "/windows/about/", true, &Service::window},
      {"GET", "/windows/preferences/", true, &Service::window},
      {"POST", "/transfers/", true, &Service::startDirect},
      {"POST", "/v5/vantrel/transfers/start", true, &Service::startSpecs},
      {"POST", "/v5/vantrel/transfers/activity", true, &Service::activity},
      {"POST", "/v5/vantrel/shutdown", true, &Service::shutDown},
  }};
  path = path.substr(0, path.find('?'));
  for (const Route& route : kRoutes)
    if (route.path == path) return &route;
  return nullptr;
}

ServiceReply Service::answer(const ServiceRequest& request) {
  touch();
  const Route* route = find(request.path);
  // Without the key nobody learns which paths there are.
  if ((route == nullptr || route->keyed) && !hasKey(request))
    return errorReply(401, "Unauthorized", "The access key is missing or wrong");
  if (route == nullptr) return errorReply(404, "Not found", "Unknown path: " + request.path);
  if (route->method != request.method)
    return errorReply(405, "Method not allowed", "Wrong method for this path: " + request.method);
  try {
    return (this->*route->handler)(request);
  } catch (const std::exception& fault) {
    return badRequest(fault.what());
  }
}

bool Service::hasKey(const ServiceRequest& request) {
  const std::string* key = request.header(kKeyHeader);
  std::lock_guard lock(mutex_);
  return key != nullptr && *key == key_;
}

void Service::touch() {
  std::lock_guard lock(mutex_);
  lastUse_ = std::chrono::steady_clock::now();
}

std::chrono::milliseconds Service::idleTime() {
  if (copier_.busy()) touch();
  std::lock_guard lock(mutex_);
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               lastUse_);
}

ServiceReply Service::ping(const ServiceRequest& /*request*/) {
  JsonObject out;
  out.add("status", "ready");
  return {200, out.text()};
}

ServiceReply Service::version(const ServiceRequest& /*request*/) {
  JsonObject out;
  out.add("product", "Orvane Vantrel");
  out.add("version", kClientVersion);
  out.addRaw("stand_in", "true");
  return {200, out.text()};
}

ServiceReply Service::window(const ServiceRequest& request) {
  constexpr std::string_view kStart = "/windows/";
  std::string_view name = std::string_view(request.path).substr(kStart.size());
  JsonObject out;
  out.add("window", name.substr(0, name.find('/')));
  return {200, out.text()};
}

ServiceReply Service::startDirect(const ServiceRequest& request) {
  XferRequest document;
  std::string problem = readXferRequest(request.body, document);
  if (!problem.empty()) return badRequest("Error parsing XML: " + problem);
  return start({orderOfXferRequest(document, folders_)});
}

ServiceReply Service::startSpecs(const ServiceRequest& request) {
  std::string problem;
  auto orders = ordersOfSpecs(request.body, folders_, problem);
  return orders.empty() ? badRequest(problem) : start(orders);
}

ServiceReply Service::start(const std::vector<TransferOrder>& orders) {
  std::string requestId = randomUuid();
  std::string transfers;
  for (const TransferOrder& order : orders) {
    std::string uuid = book_.add(order, requestId);
    if (uuid.empty()) return errorReply(503, "Busy", "Too many transfers are waiting");
    copier_.enqueue(uuid, order);
    JsonObject transfer;
    transfer.add("uuid", uuid);
    transfers += transfers.empty() ? "" : ",";
    transfers += transfer.text();
  }
  JsonObject out;
  out.add("request_id", requestId);
  out.addRaw("transfers", "[" + transfers + "]");
  return {200, out.text()};
}

ServiceReply Service::activity(const ServiceRequest& request) {
  std::string problem;
  JsonTree tree = parseJson(request.body, problem);
  if (!tree) return badRequest("Error parsing JSON: " + problem);
  std::uint64_t number = readToken(jsonTextAt(tree.get(), {"iteration_token"}), runId_);
  std::string appId = jsonTextAt(tree.get(), {"orvane_vantrel_settings", "app_id"});
  return {200, activityDocument(book_.changedSince(number, appId), runId_, knobs_.activityToken)};
}

ServiceReply Service::shutDown(const ServiceRequest& /*request*/) {
  shutdownAsked_ = true;
  JsonObject out;
  out.add("status", "ending");
  return {200, out.text()};
}

}  // namespace Vantrel::StandIn
