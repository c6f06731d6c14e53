// All transfers of this run, and the order in which they changed.
//
// Shared by the connections, which add and ask, and the copier, which reports; every operation
// takes the lock and returns copies.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "tools/client/transfer_order.h"

namespace Vantrel::StandIn {

enum class TransferStatus { kQueued, kRunning, kCompleted, kFailed };

struct TransferRecord {
  std::string uuid;
  std::string requestId;
  std::string appId;
  Direction direction = Direction::kReceive;
  std::string title;
  std::string destination;
  TransferStatus status = TransferStatus::kQueued;
  std::string statusText;
  std::string currentFile;
  std::int64_t bytesExpected = 0;
  std::int64_t bytesWritten = 0;
  std::int64_t filesExpected = 0;
  std::int64_t filesCompleted = 0;
  std::uint64_t changed = 0;  // the number of its latest change among all changes

  bool finished() const {
    return status == TransferStatus::kCompleted || status == TransferStatus::kFailed;
  }
};

class TransferBook {
 public:
  // A page that starts transfers without end loses the oldest finished ones from the book.
  static constexpr size_t kMostTransfers = 1000;

  // Returns the new transfer's uuid, or the empty text when the book is full of unfinished ones.
  std::string add(const TransferOrder& order, const std::string& requestId);

  // Changes one transfer; nothing happens when it is not there.
  void change(const std::string& uuid, const std::function<void(TransferRecord&)>& edit);

  struct Changes {
    std::vector<TransferRecord> transfers;  // in order of their start
    std::uint64_t latest = 0;               // the number of the latest change of all
  };

  // What changed after the change of that number, as far as it is for `appId`: a transfer with an
  // app id is for that id only, one without for everybody; an empty `appId` sees only the latter.
  // A number that has not been reached yet counts as 0.
  Changes changedSince(std::uint64_t number, const std::string& appId) const;

 private:
  bool makeRoom();

  mutable std::mutex mutex_;  // guards all below
  std::deque<TransferRecord> transfers_;
  std::uint64_t latest_ = 0;
};

}  // namespace Vantrel::StandIn
