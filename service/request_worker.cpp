#include "service/request_worker.h"

#include <exception>
#include <mutex>
#include <utility>

#include "runtime/ov_log.h"
#include "service/launch.h"
#include "service/locations.h"
#include "text/error_texts.h"

namespace Vantrel::Web {

RequestWorker::RequestWorker() {
  OV_DEBUG("RequestWorker() [%p]", static_cast<void*>(this));
}

RequestWorker::~RequestWorker() {
  OV_DEBUG("~RequestWorker() [%p] - size=%i", static_cast<void*>(this),
           static_cast<int>(queue_.size()));
}

void RequestWorker::addRequest(std::unique_ptr<HttpRequest> request) {
  const std::lock_guard lock(mutex_);
  queue_.push_back(std::move(request));
  condition_.signal();
}

void RequestWorker::run() {
  OV_DEBUG("RequestWorker::run()");
  while (std::unique_ptr<HttpRequest> request = waitForRequest()) {
    // What memory or a callback throws costs this one answer, not the thread.
    try {
      processOneRequest(std::move(request));
    } catch (const std::exception& error) {
      ov_err("%s", error.what());
    }
  }
  done_ = true;
  OV_DEBUG("RequestWorker::run() - done");
}

// The next request, waited for; null when a stop was asked for.
std::unique_ptr<HttpRequest> RequestWorker::waitForRequest() {
  const std::lock_guard lock(mutex_);
  while (!stopRequested_ && queue_.empty()) condition_.wait();
  if (stopRequested_) return nullptr;
  std::unique_ptr<HttpRequest> request = std::move(queue_.front());
  queue_.pop_front();
  return request;
}

void RequestWorker::processOneRequest(std::unique_ptr<HttpRequest> request) {
  ConnectionPurpose purpose;
  purpose.breaker = &breaker_;
  if (!launchVantrel(&breaker_)) {
    if (breaker_.hasCut()) return;
    OV_DEBUG("RequestWorker::processOneRequest - Vantrel couldn't be launched, error");
    ov_err("%s", kErrorContacting);
    // Told without the lock and even after a stop.
    if (request->callback) request->callback->handleCallback(nullptr);
    return;
  }
  // The client may have moved since the request was made.
  request->port = vantrelUrl().port(0);
  const std::unique_ptr<HttpResponse> response = request->invoke(purpose);
  if (request->callback) {
    // Under the lock, so that stop() cannot pass a delivery.
    const std::lock_guard lock(mutex_);
    if (!stopRequested_) request->callback->handleCallback(response.get());
  }
  request.reset();
  if (!response && !breaker_.broken()) ov_err("%s", kErrorContacting);
}

void RequestWorker::stop() {
  const bool finished = done_;
  OV_DEBUG("RequestWorker::stop() - done?=%i", finished ? 1 : 0);
  if (finished) return;
  {
    const std::lock_guard lock(mutex_);
    stopRequested_ = true;
    condition_.signal();
  }
  breaker_.breakNow();
}

}  // namespace Vantrel::Web
