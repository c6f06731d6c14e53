#include "tools/client/copier.h"

#include <chrono>
#include <fstream>
#include <stdexcept>

#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

// A file under way has this behind its name, so that a name stands for a whole file.
constexpr const char* kPartialSuffix = ".partial";

// Why a transfer failed, in words for the user.
struct TransferFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The client is going away.
struct Stopped {};

}  // namespace

Copier::Copier(const Knobs& knobs, TransferBook& book)
    : knobs_(knobs), book_(book), thread_([this] { run(); }) {}

Copier::~Copier() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void Copier::enqueue(const std::string& uuid, TransferOrder order) {
  {
    std::lock_guard lock(mutex_);
    queue_.emplace_back(uuid, std::move(order));
  }
  wake_.notify_all();
}

bool Copier::busy() const {
  std::lock_guard lock(mutex_);
  return working_ || !queue_.empty();
}

void Copier::run() {
  std::unique_lock lock(mutex_);
  while (true) {
    working_ = false;
    wake_.wait(lock, [this] { return stop_ || !queue_.empty(); });
    if (stop_) return;
    auto [uuid, order] = std::move(queue_.front());
    queue_.pop_front();
    working_ = true;
    lock.unlock();
    carryOut(uuid, order);
    lock.lock();
  }
}

void Copier::carryOut(const std::string& uuid, const TransferOrder& order) {
  std::string failure;
  try {
    copyAll(uuid, order);
  } catch (const Stopped&) {
    return;
  } catch (const TransferFailure& fault) {
    failure = fault.what();
  } catch (const std::exception& fault) {
    failure = std::string("The transfer failed: ") + fault.what();
  }
  book_.change(uuid, [&](TransferRecord& record) {
    record.status = failure.empty() ? TransferStatus::kCompleted : TransferStatus::kFailed;
    record.statusText = failure.empty() ? "Completed" : failure;
    record.currentFile.clear();
  });
}

void Copier::copyAll(const std::string& uuid, const TransferOrder& order) {
  if (!order.problem.empty()) throw TransferFailure(order.problem);
  Plan plan = planOf(order);
  std::int64_t bytes = 0;
  for (const Piece& piece : plan.files) bytes += piece.bytes;
  bytesOfTransfer_ = 0;
  book_.change(uuid, [&](TransferRecord& record) {
    record.status = TransferStatus::kRunning;
    record.statusText = "Copying";
    record.bytesExpected = bytes;
    record.filesExpected = static_cast<std::int64_t>(plan.files.size());
  });
  for (const fs::path& folder : plan.folders) fs::create_directories(folder);
  for (const Piece& piece : plan.files) copyFile(uuid, piece);
}

Copier::Plan Copier::planOf(const TransferOrder& order) {
  Plan plan;
  for (const fs::path& source : order.sources) planSource(source, order.destination, plan);
  return plan;
}

void Copier::planSource(const fs::path& source, const fs::path& destination, Plan& plan) {
  auto add = [&](const fs::path& from, const fs::path& to) {
    plan.files.push_back({from, to, static_cast<std::int64_t>(fs::file_size(from))});
  };
  if (!fs::exists(source)) throw TransferFailure("No such file or folder: " + textOf(source));
  // A folder may be named with a slash behind it.
  fs::path name = source.has_filename() ? source.filename() : source.parent_path().filename();
  fs::path target = destination / name;
  if (fs::is_regular_file(source)) return add(source, target);
  plan.folders.push_back(target);
  for (const auto& entry : fs::recursive_directory_iterator(source)) {
    fs::path to = target / entry.path().lexically_relative(source);
    if (entry.is_directory()) plan.folders.push_back(to);
    if (entry.is_regular_file()) add(entry.path(), to);
  }
}

void Copier::copyFile(const std::string& uuid, const Piece& piece) {
  book_.change(uuid, [&](TransferRecord& record) { record.currentFile = textOf(piece.from); });
  std::error_code ignored;
  fs::create_directories(piece.to.parent_path(), ignored);
  fs::path partial = piece.to;
  partial += kPartialSuffix;
  try {
    std::ifstream in(piece.from, std::ios::binary);
    if (!in) throw TransferFailure("The file cannot be read: " + textOf(piece.from));
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    if (!out) throw TransferFailure("The file cannot be written: " + textOf(piece.to));
    std::vector<char> buffer(static_cast<size_t>(knobs_.chunkBytes));
    while (in.read(buffer.data(), knobs_.chunkBytes), in.gcount() > 0) {
      out.write(buffer.data(), in.gcount());
      out.flush();
      if (!out) throw TransferFailure("The file cannot be written: " + textOf(piece.to));
      report(uuid, in.gcount());
      pause();
    }
    if (in.bad()) throw TransferFailure("The file cannot be read: " + textOf(piece.from));
    out.close();
    fs::rename(partial, piece.to);
  } catch (...) {
    fs::remove(partial, ignored);
    throw;
  }
  book_.change(uuid, [](TransferRecord& record) { ++record.filesCompleted; });
}

void Copier::report(const std::string& uuid, std::int64_t bytes) {
  bytesOfTransfer_ += bytes;
  book_.change(uuid, [&](TransferRecord& record) { record.bytesWritten = bytesOfTransfer_; });
  if (knobs_.transferFailAt >= 0 && bytesOfTransfer_ >= knobs_.transferFailAt)
    throw TransferFailure("The connection to the remote side was lost");
}

void Copier::pause() {
  std::unique_lock lock(mutex_);
  if (wake_.wait_for(lock, std::chrono::milliseconds(knobs_.chunkPauseMs),
                     [this] { return stop_; }))
    throw Stopped();
}

}  // namespace Vantrel::StandIn
