// The background thread that performs queued requests one at a time, in order of arrival, and gives
// each reply to the request's callback. Owned by a Plugin, which starts, stops and joins it on the
// browser's thread; requests may be added from any thread.
#pragma once

#include <atomic>
#include <deque>
#include <memory>

#include "service/http_request.h"
#include "threads/mutex.h"
#include "threads/worker.h"

namespace Vantrel::Web {

class RequestWorker : public Worker {
 public:
  RequestWorker();
  // Destroys the requests that were not served; their callbacks hear nothing.
  ~RequestWorker() override;

  // Queues a request. Waits for a callback in progress, for nothing else.
  void addRequest(std::unique_ptr<HttpRequest> request);

  bool done() override { return done_; }
  void run() override;
  // Ends a connect, send or receive that is under way. Once this has returned, no reply is
  // delivered any more; a failed launch may still be told.
  void stop() override;

 private:
  std::unique_ptr<HttpRequest> waitForRequest();
  void processOneRequest(std::unique_ptr<HttpRequest> request);

  std::atomic<bool> done_{false};
  Mutex mutex_;  // guards queue, stopRequested and the delivery of replies
  Condition condition_{mutex_};
  std::deque<std::unique_ptr<HttpRequest>> queue_;
  bool stopRequested_ = false;
  SocketBreaker breaker_;
};

}  // namespace Vantrel::Web
