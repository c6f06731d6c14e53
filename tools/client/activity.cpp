#include "tools/client/activity.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "tools/client/json_text.h"

namespace Vantrel::StandIn {
namespace {

std::string_view statusName(TransferStatus status) {
  switch (status) {
    case TransferStatus::kQueued:
      return "queued";
    case TransferStatus::kRunning:
      return "running";
    case TransferStatus::kCompleted:
      return "completed";
    case TransferStatus::kFailed:
      return "failed";
  }
  return {};
}

// Whole percent, 100 only when all is done.
std::int64_t percentage(const TransferRecord& record) {
  if (record.status == TransferStatus::kCompleted) return 100;
  if (record.bytesExpected <= 0) return 0;
  return std::min<std::int64_t>(record.bytesWritten * 100 / record.bytesExpected, 99);
}

}  // namespace

std::uint64_t readToken(const std::string& token, const std::string& runId) {
  std::string_view rest = token;
  size_t dash = rest.find('-');
  if (dash != std::string_view::npos) {
    if (rest.substr(0, dash) != runId) return 0;
    rest.remove_prefix(dash + 1);
  }
  std::uint64_t number = 0;
  const char* end = rest.data() + rest.size();
  auto result = std::from_chars(rest.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? number : 0;
}

std::string transferDocument(const TransferRecord& record) {
  JsonObject out;
  out.add("uuid", record.uuid);
  out.add("request_id", record.requestId);
  out.add("app_id", record.appId);
  out.add("direction", record.direction == Direction::kSend ? "send" : "receive");
  out.add("title", record.title);
  out.add("destination", record.destination);
  out.add("status", statusName(record.status));
  out.add("status_text", record.statusText);
  out.add("current_file", record.currentFile);
  out.add("bytes_expected", record.bytesExpected);
  out.add("bytes_written", record.bytesWritten);
  out.add("percentage", percentage(record));
  out.add("files_expected", record.filesExpected);
  out.add("files_completed", record.filesCompleted);
  return out.text();
}

std::string activityDocument(const TransferBook::Changes& changes, const std::string& runId,
                             const std::string& form) {
  std::string transfers;
  for (const TransferRecord& record : changes.transfers) {
    if (!transfers.empty()) transfers += ',';
    transfers += transferDocument(record);
  }
  JsonObject out;
  std::string number = std::to_string(changes.latest);
  if (form == "string") out.add("iteration_token", runId + "-" + number);
  if (form == "number") out.addRaw("iteration_token", number);
  out.add("result_count", static_cast<std::int64_t>(changes.transfers.size()));
  out.addRaw("transfers", "[" + transfers + "]");
  return out.text();
}

}  // namespace Vantrel::StandIn
