#include "tools/client/transfer_order.h"

#include <stdexcept>

#include "tools/client/json_tree.h"
#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSettings = "orvane_vantrel_settings";
constexpr const char* kSpec = "transfer_spec";

// A fault of the body as a whole: nothing is started.
struct BadBody : std::runtime_error {
  using std::runtime_error::runtime_error;
};

void fail(TransferOrder& order, const std::string& words) {
  if (order.problem.empty()) order.problem = words;
}

void addSource(TransferOrder& order, const TransferFolders& folders, const std::string& source) {
  if (order.title.empty()) order.title = source;
  if (order.direction == Direction::kSend) {
    order.sources.push_back(pathOf(source));
    return;
  }
  auto path = pathWithin(folders.remoteRoot, source);
  if (path) order.sources.push_back(*path);
  if (!path) fail(order, "The remote side has no such path: " + source);
}

void setRemoteDestination(TransferOrder& order, const TransferFolders& folders,
                          const std::string& text) {
  auto path = pathWithin(folders.remoteRoot, text);
  if (path) order.destination = *path;
  if (!path) fail(order, "The remote side has no such folder: " + text);
}

// A page reaches a folder outside the download folder only by asking for it openly, because the
// plug-in checks only what is asked for openly.
void setLocalDestination(TransferOrder& order, const TransferFolders& folders,
                         const std::string& text, bool absolute) {
  if (absolute) {
    order.destination = pathOf(text);
    if (!order.destination.is_absolute()) fail(order, "Not an absolute destination: " + text);
    return;
  }
  auto path = pathWithin(folders.downloadRoot, text);
  if (path) order.destination = *path;
  if (!path) fail(order, "Not a folder below the download folder: " + text);
}

std::string joined(const std::string& root, const std::string& source) {
  if (root.empty()) return source;
  return root.ends_with('/') || root.ends_with('\\') ? root + source : root + "/" + source;
}

Direction directionOf(const std::string& text) {
  if (text == "receive") return Direction::kReceive;
  if (text == "send") return Direction::kSend;
  throw BadBody("Invalid argument: direction");
}

TransferOrder orderOfSpec(yajl_val element, const std::string& appId,
                          const TransferFolders& folders) {
  TransferOrder order;
  order.appId = appId;
  yajl_val spec = jsonAt(element, {kSpec});
  order.direction = directionOf(jsonTextAt(spec, {"direction"}));
  std::string root = jsonTextAt(spec, {"source_root"});
  for (yajl_val path : jsonArrayAt(spec, {"paths"})) {
    std::string source = jsonTextAt(path, {"source"});
    if (source.empty()) throw BadBody("Invalid argument: paths");
    addSource(order, folders, joined(root, source));
  }
  if (order.title.empty()) throw BadBody("Invalid argument: paths");
  std::string destination = jsonTextAt(spec, {"destination_root"});
  bool absolute = YAJL_IS_TRUE(jsonAt(element, {kSettings, "use_absolute_destination_path"}));
  if (order.direction == Direction::kSend)
    setRemoteDestination(order, folders, destination);
  else
    setLocalDestination(order, folders, destination, absolute);
  return order;
}

}  // namespace

std::vector<TransferOrder> ordersOfSpecs(const std::string& body, const TransferFolders& folders,
                                         std::string& problem) {
  JsonTree tree = parseJson(body, problem);
  if (!tree) {
    problem = "Error parsing JSON: " + problem;
    return {};
  }
  std::vector<TransferOrder> orders;
  std::string appId = jsonTextAt(tree.get(), {kSettings, "app_id"});
  try {
    for (yajl_val element : jsonArrayAt(tree.get(), {"transfer_specs"}))
      orders.push_back(orderOfSpec(element, appId, folders));
  } catch (const BadBody& fault) {
    problem = fault.what();
    return {};
  }
  if (orders.empty()) problem = "Invalid argument: transfer_specs";
  return orders;
}

TransferOrder orderOfXferRequest(const XferRequest& request, const TransferFolders& folders) {
  TransferOrder order;
  const std::string& destination = request.destination;
  bool remote = destination.find("://") != std::string::npos && !destination.starts_with("file://");
  order.direction = remote ? Direction::kSend : Direction::kReceive;
  for (const std::string& source : request.sources)
    addSource(order, folders, remote ? pathOfFileUrl(source) : pathOfRemoteUrl(source));
  if (request.sources.empty()) fail(order, "Nothing to transfer");
  if (remote)
    setRemoteDestination(order, folders, pathOfRemoteUrl(destination));
  else
    setLocalDestination(order, folders, pathOfFileUrl(destination), !destination.empty());
  return order;
}

}  // namespace Vantrel::StandIn
