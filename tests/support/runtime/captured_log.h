// For tests: takes the process's log for the lifetime of the object and keeps what is logged.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "runtime/ov_log.h"

namespace ov {

class CapturedLog {
 public:
  CapturedLog() {
    ov_log_cleanup();
    ov_log_set(1);
    ov_dbg_set(1);
    ov_dbg_set_all(3);
    take();
    ov_log_init_function(&CapturedLog::keep);
  }
  ~CapturedLog() {
    ov_log_cleanup();
    ov_dbg_set(0);
    ov_dbg_set_all(0);
  }
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  // What was logged since the last call, one message each, the level's name in front.
  std::vector<std::string> take() {
    const std::lock_guard<std::mutex> lock(guard_);
    return std::exchange(messages_, {});
  }

 private:
  static void keep(const char* text) {
    const std::lock_guard<std::mutex> lock(guard_);
    messages_.emplace_back(text);
  }

  // Guards `messages`.
  static inline std::mutex guard_;
  static inline std::vector<std::string> messages_;
};

}  // namespace ov
