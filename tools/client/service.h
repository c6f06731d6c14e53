// The local service without its sockets: it answers requests and keeps the transfers.
//
// Owned by main; answer is called by one thread per connection at once.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>

#include "tools/client/copier.h"
#include "tools/client/http_message.h"
#include "tools/client/knobs.h"
#include "tools/client/transfer_book.h"
#include "tools/client/transfer_order.h"

namespace Vantrel::StandIn {

// The version that the client tells.
inline constexpr const char* kClientVersion = "3.7.4";

class Service {
 public:
  // The knobs must outlive the service.
  Service(const Knobs& knobs, TransferFolders folders);

  // The key that requests must carry from now on; ordinary text, or with a line feed at its end.
  void setKey(const std::string& key);

  ServiceReply answer(const ServiceRequest& request);

  // True once somebody has asked the client to end.
  bool shutdownAsked() const { return shutdownAsked_; }

  // How long nothing was asked and nothing was copied.
  std::chrono::milliseconds idleTime();

 private:
  using Handler = ServiceReply (Service::*)(const ServiceRequest&);
  struct Route {
    std::string_view method;
    std::string_view path;
    bool keyed;
    Handler handler;
  };
  static const Route* find(std::string_view path);

  bool hasKey(const ServiceRequest& request);
  ServiceReply ping(const ServiceRequest& request);
  ServiceReply version(const ServiceRequest& request);
  ServiceReply window(const ServiceRequest& request);
  ServiceReply startDirect(const ServiceRequest& request);
  ServiceReply startSpecs(const ServiceRequest& request);
  ServiceReply activity(const ServiceRequest& request);
  ServiceReply shutDown(const ServiceRequest& request);
  ServiceReply start(const std::vector<TransferOrder>& orders);
  void touch();

  const Knobs& knobs_;
  const TransferFolders folders_;
  const std::string runId_;
  TransferBook book_;
  Copier copier_;
  std::atomic<bool> shutdownAsked_ = false;
  std::mutex mutex_;  // guards all below
  std::string key_;
  std::chrono::steady_clock::time_point lastUse_ = std::chrono::steady_clock::now();
};

}  // namespace Vantrel::StandIn
