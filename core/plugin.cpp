// Life, session and identification of an instance.

#include "core/plugin.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "core/version.h"
#include "runtime/ov_log.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "service/launch.h"
#include "text/error_reply.h"
#include "text/error_texts.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {

namespace {

// Asks the worker's thread to end, waits for it and deletes the worker.
template <class W>
void endWorker(std::unique_ptr<W>& worker) {
  if (!worker) return;
  try {
    worker->stop();
    worker->join();
  } catch (const std::exception&) {
    // join() has reported it. A thread that may still run keeps its worker.
    if (worker->hasThread()) static_cast<void>(worker.release());
  }
  worker.reset();
}

std::string parameter(const std::map<std::string, std::string>& parameters, const char* key) {
  const auto found = parameters.find(key);
  return found == parameters.end() ? std::string() : found->second;
}

}  // namespace

// Each start of the platform's sockets is one end later, also where the rest of the construction
// fails.
struct Plugin::SocketLayer {
  SocketLayer() {
    if (const ov_rc code = ov_sock_init()) {
      ov_err("%s", describeSystemError("Failed to initialize socket: ", code).c_str());
    }
  }
  ~SocketLayer() { ov_sock_fini(); }
  SocketLayer(const SocketLayer&) = delete;
  SocketLayer& operator=(const SocketLayer&) = delete;
};

Plugin::Plugin() {
  OV_DEBUG("Plugin() [%p]", static_cast<void*>(this));
  setLayeredWindowAttributes_ = findSetLayeredWindowAttributes();
  socketLayer_ = std::make_unique<SocketLayer>();
  requestWorker_ = std::make_unique<RequestWorker>();
  transfersPoller_ = std::make_unique<TransfersPoller>();
  changeToHomeDirectory();
  OV_DEBUG("Plugin() - done");
}

Plugin::~Plugin() {
  OV_DEBUG("~Plugin() [%p]", static_cast<void*>(this));
  endWorker(requestWorker_);
  endWorker(transfersPoller_);
  socketLayer_.reset();
  OV_DEBUG("~Plugin() - done");
}

void Plugin::setUserAgent(const std::string& text) {
  std::string agent = text;
  std::transform(agent.begin(), agent.end(), agent.begin(), [](char byte) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
  });
  // The order matters: a Chrome user agent also holds "safari".
  static constexpr std::array<const char*, 3> kBrowsers = {"firefox", "chrome", "safari"};
  const auto* const hit =
      std::find_if(kBrowsers.begin(), kBrowsers.end(),
                   [&agent](const char* word) { return agent.find(word) != std::string::npos; });
  browserHost_ = hit == kBrowsers.end() ? agent : *hit;
  ov_log("Browser host: %s", browserHost_.c_str());
}

void Plugin::init(int32_t launchTimeoutMs) {
  OV_DEBUG("PlugIn::init() - launchTimeoutMs=%d", launchTimeoutMs);
  setLaunchTimeout(launchTimeoutMs);
  launchVantrel();
  requestWorker_->start();
}

void Plugin::setParameters(const std::map<std::string, std::string>& parameters) {
  if (const std::string capacity = parameter(parameters, "link-capacity"); !capacity.empty()) {
    linkCapacity_ = ov_str_atoi(capacity.c_str());
  }
  transferIcon_ = parameter(parameters, "transfer-icon");
  dropUploadUrl_ = parameter(parameters, "drop-upload-url");
}

std::string Plugin::validateHostname(const std::string& id) const {
  if (hostname.empty() || id.empty() || id.front() != '^') return {};
  const std::string got = id.substr(1);
  if (got == hostname) return {};
  ov_err("Hostname validation failed:\n  Expected: %s\n  Got: %s", hostname.c_str(), got.c_str());
  return jsonErrorReply(std::string(kErrorInvalidHostname) + ": " + hostname);
}

std::string Plugin::initSession(const std::string& applicationId, const std::string& domain) {
  OV_DEBUG("initSession\n  appId: %s\n  domain: %s", applicationId.c_str(), domain.c_str());
  if (sessionInitialized_) return jsonErrorReply(kErrorSessionInitialized);
  std::string error = validateHostname(applicationId);
  if (!error.empty()) return error;
  appId_ = applicationId;
  transfersPoller_->setAppId(applicationId);
  try {
    transfersPoller_->start();
  } catch (...) {
    appId_.clear();
    transfersPoller_->setAppId("");
    throw;
  }
  sessionInitialized_ = true;
  return "{\"app_id\":\"" + appId_ + "\"}";
}

std::string Plugin::queryBrowserEngine(int32_t code) {
  switch (code) {
    case 0:
      return "Gecko";
    case 1:
      return "MSHTML";
    case 2:
      return "WebKit";
    default:
      return "Unknown";
  }
}

std::string Plugin::queryBuildVersion() {
  return OV_BUILD_VERSION;
}
std::string Plugin::queryPluginVersion() {
  return OV_BUILD_VERSION;
}
std::string Plugin::queryVersion() {
  return OV_SHORT_VERSION;
}

}  // namespace Vantrel::Web
