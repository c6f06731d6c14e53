#include "service/transfers_poller.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <mutex>

#include "runtime/ov_log.h"
#include "service/vantrel_request.h"
#include "text/error_texts.h"
#include "text/json_document.h"

namespace Vantrel::Web {

namespace {

constexpr char kActivityPath[] = "/transfers/activity";
const char* const kTokenPath[] = {"iteration_token", nullptr};

}  // namespace

TransfersPoller::TransfersPoller() {
  OV_DEBUG("%p TransfersPoller()", static_cast<void*>(this));
}

TransfersPoller::~TransfersPoller() {
  OV_DEBUG("%p ~TransfersPoller() - started?=%u", static_cast<void*>(this), started_ ? 1U : 0U);
}

void TransfersPoller::setAppId(const std::string& text) {
  appId_ = text;
}

void TransfersPoller::addListener(TransferEventListener* listener) {
  const std::lock_guard lock(mutex_);
  OV_DEBUG("%p TransferPoller::addListener() - size=%i", static_cast<void*>(this),
           static_cast<int>(listeners_.size()));
  listeners_.push_back(listener);
}

void TransfersPoller::removeListener(TransferEventListener* listener) {
  const std::lock_guard lock(mutex_);
  OV_DEBUG("%p TransferPoller::removeListener() - size=%i", static_cast<void*>(this),
           static_cast<int>(listeners_.size()));
  const auto found = std::find(listeners_.begin(), listeners_.end(), listener);
  if (found == listeners_.end()) return;
  listeners_.erase(found);
  OV_DEBUG("%p TransferPoller::removeListener() - removed", static_cast<void*>(this));
}

void TransfersPoller::run() {
  OV_DEBUG("%p TransferPoller::run()", static_cast<void*>(this));
  while (!stopRequested_) {
    if (stopSignal_.waitFor(pollIntervalMs_) || stopRequested_) break;
    // What memory or a listener throws costs this one poll, not the thread.
    try {
      pollOnce();
    } catch (const std::exception& error) {
      ov_err("%s", error.what());
    }
  }
  done_ = true;
  OV_DEBUG("%p TransferPoller::run() - done", static_cast<void*>(this));
}

void TransfersPoller::pollOnce() {
  std::unique_ptr<HttpRequest> request = newVantrelRequest(
      "POST", std::string(kServicePath) + kActivityPath, requestBody(), kFormatJson);
  if (!request) return;
  ConnectionPurpose purpose;
  purpose.breaker = &breaker_;
  std::unique_ptr<HttpResponse> response = request->invoke(purpose);
  request.reset();
  if (!response) return;
  const std::string reply = response->takeBody();
  response.reset();
  if (!stopRequested_) handleReply(reply);
}

// The token and the id go out as they are.
std::string TransfersPoller::requestBody() const {
  return "{\n"
         "    \"iteration_token\": \"" +
         iterationToken_ +
         "\",\n"
         "    \"orvane_vantrel_settings\" : {\n"
         "        \"app_id\": \"" +
         appId_ +
         "\"\n"
         "    }\n"
         "}\n";
}

void TransfersPoller::handleReply(const std::string& reply) {
  JsonDocument document;
  if (!document.parse(reply)) {
    ov_err("%s: %s", kErrorParsingJson, document.errorText().c_str());
    return;
  }
  if (document.hasError()) {
    ov_err("Transfer poller response contained an error: %s", reply.c_str());
    return;
  }
  iterationToken_ = document.getString(kTokenPath);
  notifyListeners(reply);
}

void TransfersPoller::notifyListeners(const std::string& text) {
  const std::lock_guard lock(mutex_);
  OV_DEBUG("%p TransferPoller::notifyListeners() - size=%i", static_cast<void*>(this),
           static_cast<int>(listeners_.size()));
  for (TransferEventListener* listener : listeners_) listener->transferEventOccurred(text);
}

void TransfersPoller::stop() {
  const bool finished = done_;
  OV_DEBUG("%p TransferPoller::stop() - done?=%i", static_cast<void*>(this), finished ? 1 : 0);
  if (finished) return;
  stopRequested_ = true;
  stopSignal_.post();
  breaker_.breakNow();
}

}  // namespace Vantrel::Web
