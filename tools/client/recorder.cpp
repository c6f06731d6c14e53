#include "tools/client/recorder.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Vantrel::StandIn {

void ConnectionRecord::add(std::string_view bytes) {
  if (!out_.is_open()) return;
  out_ << bytes;
  out_.flush();
}

Recorder::Recorder(std::filesystem::path folder) : folder_(std::move(folder)) {
  if (!folder_.empty()) std::filesystem::create_directories(folder_);
}

ConnectionRecord Recorder::next() {
  if (folder_.empty()) return {};
  std::string number = std::to_string(++count_);
  return ConnectionRecord(
      folder_ / (std::string(6 - std::min<size_t>(number.size(), 6), '0') + number + ".bin"));
}

}  // namespace Vantrel::StandIn
