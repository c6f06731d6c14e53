// What a transfer is to do, read from what the plug-in sent: a forwarded transfer specification
// or an xferreq document.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tools/client/xferreq.h"

namespace Vantrel::StandIn {

enum class Direction { kReceive, kSend };

struct TransferOrder {
  std::string appId;  // empty for a direct start, which names none
  Direction direction = Direction::kReceive;
  std::string title;  // the first source as it was named
  std::vector<std::filesystem::path> sources;
  std::filesystem::path destination;  // the folder that receives the sources
  std::string problem;                // not empty: the transfer fails at once with these words
};

// The two ends of every transfer.
struct TransferFolders {
  std::filesystem::path remoteRoot;    // what plays the remote side
  std::filesystem::path downloadRoot;  // where a "receive" without an absolute destination goes
};

// The orders in a body of /v5/vantrel/transfers/start, one for each specification. On a body that
// asks for nothing understandable returns none, with the reason in `problem`.
std::vector<TransferOrder> ordersOfSpecs(const std::string& body, const TransferFolders& folders,
                                         std::string& problem);

// The order of an xferreq: a send when its destination is a URL that is no "file://" one.
TransferOrder orderOfXferRequest(const XferRequest& request, const TransferFolders& folders);

}  // namespace Vantrel::StandIn
