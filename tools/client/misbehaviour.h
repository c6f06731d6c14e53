// Which requests are answered badly, and what their replies look like as bytes.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "tools/client/http_message.h"
#include "tools/client/knobs.h"

namespace Vantrel::StandIn {

// How one reply goes out.
struct ReplyPlan {
  std::int64_t delayMs = 0;         // before its first byte
  bool silent = false;              // nothing goes out, and the connection stays open
  std::vector<std::string> pieces;  // one send each; none: the connection is closed at once
  std::int64_t pauseMs = 0;         // between the pieces
};

// Counts the requests that the knobs aim at; shared by all connections.
class MisbehaviourGate {
 public:
  explicit MisbehaviourGate(const Knobs& knobs) : knobs_(knobs) {}

  struct Verdict {
    bool misbehave = false;
    bool restart = false;  // listen elsewhere before the reply goes out
    bool exit = false;     // end after the reply
  };
  Verdict judge(std::string_view path);

 private:
  const Knobs& knobs_;
  std::mutex mutex_;  // guards aimedAt_
  std::int64_t aimedAt_ = 0;
};

// A reply as it should be.
ReplyPlan honestPlan(const ServiceReply& reply);

// A reply as the knobs want it.
ReplyPlan misbehavedPlan(const ServiceReply& reply, const Knobs& knobs);

}  // namespace Vantrel::StandIn
