#include "tests/host/call_log.h"

namespace Vantrel::Web::Host {

CallLog::CallLog(Faults& faults) : faults_(faults), browserThread_(std::this_thread::get_id()) {}

void CallLog::record(const char* name) {
  recordFromAnyThread(name);
  if (!onBrowserThread()) faults_.add(std::string(name) + " called off the browser's thread");
}

void CallLog::recordFromAnyThread(const char* name) {
  const std::lock_guard<std::mutex> guard(mutex_);
  Count& count = counts_[name];
  ++count.all;
  if (!onBrowserThread()) ++count.offThread;
}

int CallLog::count(std::string_view name) const {
  const std::lock_guard<std::mutex> guard(mutex_);
  const auto found = counts_.find(name);
  return found == counts_.end() ? 0 : found->second.all;
}

int CallLog::countOffThread(std::string_view name) const {
  const std::lock_guard<std::mutex> guard(mutex_);
  const auto found = counts_.find(name);
  return found == counts_.end() ? 0 : found->second.offThread;
}

bool CallLog::onBrowserThread() const {
  return std::this_thread::get_id() == browserThread_;
}

void CallLog::clear() {
  const std::lock_guard<std::mutex> guard(mutex_);
  counts_.clear();
}

}  // namespace Vantrel::Web::Host
