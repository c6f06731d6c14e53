#include "tests/support/log_recorder.h"

#include <algorithm>
#include <mutex>

#include "runtime/ov_log.h"

namespace Vantrel::Web::TestSupport {

namespace {

// The sink is a plain function, so what it fills is the process's.
std::mutex recordedMutex;
std::vector<std::string> recorded;

void record(const char* text) {
  const std::lock_guard lock(recordedMutex);
  recorded.emplace_back(text);
}

}  // namespace

LogRecorder::LogRecorder() {
  clear();
  ov_log_cleanup();
  ov_log_init_function(record);
  ov_log_set(1);
  ov_dbg_set(1);
  ov_dbg_set_all(3);
}

LogRecorder::~LogRecorder() {
  ov_dbg_set_all(0);
  ov_dbg_set(0);
  ov_log_cleanup();
}

std::vector<std::string> LogRecorder::lines() const {
  const std::lock_guard lock(recordedMutex);
  return recorded;
}

std::vector<std::string> LogRecorder::lines(const std::string& level) const {
  std::vector<std::string> found;
  for (const std::string& line : lines()) {
    if (line.rfind(level + " ", 0) == 0) found.push_back(line.substr(level.size() + 1));
  }
  return found;
}

size_t LogRecorder::count(const std::string& line) const {
  const std::vector<std::string> all = lines();
  return static_cast<size_t>(std::count(all.begin(), all.end(), line));
}

size_t LogRecorder::countContaining(const std::string& part) const {
  const std::vector<std::string> all = lines();
  return static_cast<size_t>(std::count_if(all.begin(), all.end(), [&](const std::string& line) {
    return line.find(part) != std::string::npos;
  }));
}

std::string LogRecorder::text() const {
  std::string all;
  for (const std::string& line : lines()) all += line + "\n";
  return all;
}

void LogRecorder::clear() {
  const std::lock_guard lock(recordedMutex);
  recorded.clear();
}

}  // namespace Vantrel::Web::TestSupport
