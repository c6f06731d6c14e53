// The thread that carries out transfers, one after the other, in pieces with pauses between them,
// and reports each piece to the book.
//
// Owned by the service, which may call enqueue from any thread; the destructor abandons what is
// unfinished and joins the thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tools/client/knobs.h"
#include "tools/client/transfer_book.h"

namespace Vantrel::StandIn {

class Copier {
 public:
  // Both must outlive the copier.
  Copier(const Knobs& knobs, TransferBook& book);
  ~Copier();
  Copier(const Copier&) = delete;
  Copier& operator=(const Copier&) = delete;

  void enqueue(const std::string& uuid, TransferOrder order);

  // True while a transfer is waiting or running.
  bool busy() const;

 private:
  struct Piece {
    std::filesystem::path from;
    std::filesystem::path to;
    std::int64_t bytes = 0;
  };
  // Made whole before anything is written: a folder copied into itself would never end otherwise.
  struct Plan {
    std::vector<std::filesystem::path> folders;
    std::vector<Piece> files;
  };

  void run();
  void carryOut(const std::string& uuid, const TransferOrder& order);
  void copyAll(const std::string& uuid, const TransferOrder& order);
  void copyFile(const std::string& uuid, const Piece& piece);
  void report(const std::string& uuid, std::int64_t bytes);
  static Plan planOf(const TransferOrder& order);
  static void planSource(const std::filesystem::path& source,
                         const std::filesystem::path& destination, Plan& plan);
  void pause();

  const Knobs& knobs_;
  TransferBook& book_;
  std::int64_t bytesOfTransfer_ = 0;  // the copier's thread only

  mutable std::mutex mutex_;  // guards all below but the thread
  std::condition_variable wake_;
  std::deque<std::pair<std::string, TransferOrder>> queue_;
  bool working_ = false;
  bool stop_ = false;
  std::thread thread_;
};

}  // namespace Vantrel::StandIn
