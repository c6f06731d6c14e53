// The background thread that asks the desktop client once a second for transfer activity and hands
// each good reply to the listeners. Owned by a Plugin, which starts it with the session and stops
// and joins it. It never starts the client.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "service/transfer_event_listener.h"
#include "service/tcp_socket.h"
#include "threads/mutex.h"
#include "threads/semaphore.h"
#include "threads/worker.h"

namespace Vantrel::Web {

class TransfersPoller : public Worker {
 public:
  TransfersPoller();
  ~TransfersPoller() override;

  // The session's application id; before start().
  void setAppId(const std::string& text);

  // Any time, on the browser's thread. When removeListener has returned, the listener is not called
  // any more. Duplicates are kept; a listener that is not in the list is ignored.
  void addListener(TransferEventListener* listener);
  void removeListener(TransferEventListener* listener);

  bool done() override { return done_; }
  void run() override;
  // Ends the present pause or exchange; the thread then leaves without another request.
  void stop() override;

 private:
  void pollOnce();
  std::string requestBody() const;
  void handleReply(const std::string& reply);
  void notifyListeners(const std::string& text);

  std::string appId_;
  std::atomic<bool> done_{false};
  std::string iterationToken_;  // of the last good reply; the worker's thread only
  std::vector<TransferEventListener*> listeners_;
  Mutex mutex_;  // guards listeners, and is held during delivery
  int32_t pollIntervalMs_ = 1000;
  std::atomic<bool> stopRequested_{false};
  Semaphore stopSignal_;
  SocketBreaker breaker_;
};

}  // namespace Vantrel::Web
