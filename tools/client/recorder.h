// The raw bytes of every connection, one file each, named by the order of their coming:
// 000001.bin, 000002.bin and so on. Written as they arrive, so that a request whose reply was
// seen is in its file.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace Vantrel::StandIn {

// The record of one connection; used by its thread.
class ConnectionRecord {
 public:
  ConnectionRecord() = default;
  explicit ConnectionRecord(const std::filesystem::path& file)
      : out_(file, std::ios::binary | std::ios::trunc) {}
  void add(std::string_view bytes);

 private:
  std::ofstream out_;
};

class Recorder {
 public:
  // An empty folder records nothing. A folder that is missing is made.
  explicit Recorder(std::filesystem::path folder);

  // Called in the order of the connections.
  ConnectionRecord next();

 private:
  std::filesystem::path folder_;
  std::atomic<unsigned> count_ = 0;
};

}  // namespace Vantrel::StandIn
