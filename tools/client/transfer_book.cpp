#include "tools/client/transfer_book.h"

#include <algorithm>

#include "tools/client/paths.h"
#include "tools/client/random_text.h"

namespace Vantrel::StandIn {

std::string TransferBook::add(const TransferOrder& order, const std::string& requestId) {
  TransferRecord record;
  record.uuid = randomUuid();
  record.requestId = requestId;
  record.appId = order.appId;
  record.direction = order.direction;
  record.title = order.title;
  record.destination = textOf(order.destination);
  record.statusText = "Waiting";
  std::lock_guard lock(mutex_);
  if (!makeRoom()) return {};
  record.changed = ++latest_;
  transfers_.push_back(record);
  return record.uuid;
}

bool TransferBook::makeRoom() {
  if (transfers_.size() < kMostTransfers) return true;
  auto oldest = std::find_if(transfers_.begin(), transfers_.end(),
                             [](const TransferRecord& record) { return record.finished(); });
  if (oldest == transfers_.end()) return false;
  transfers_.erase(oldest);
  return true;
}

void TransferBook::change(const std::string& uuid,
                          const std::function<void(TransferRecord&)>& edit) {
  std::lock_guard lock(mutex_);
  auto found = std::find_if(transfers_.begin(), transfers_.end(),
                            [&](const TransferRecord& record) { return record.uuid == uuid; });
  if (found == transfers_.end()) return;
  edit(*found);
  found->changed = ++latest_;
}

TransferBook::Changes TransferBook::changedSince(std::uint64_t number,
                                                 const std::string& appId) const {
  std::lock_guard lock(mutex_);
  Changes changes;
  changes.latest = latest_;
  if (number > latest_) number = 0;
  for (const TransferRecord& record : transfers_) {
    bool visible = record.appId.empty() || record.appId == appId;
    if (visible && record.changed > number) changes.transfers.push_back(record);
  }
  return changes;
}

}  // namespace Vantrel::StandIn
