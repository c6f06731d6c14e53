// Captures every line of the process-wide log while it lives; the lines read as a function sink
// gets them, "ERR text", "LOG text" or "DBG text". One at a time; any thread may log meanwhile.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Vantrel::Web::TestSupport {

class LogRecorder {
 public:
  // Takes the log over, debug lines included.
  LogRecorder();
  // Closes the log and switches debugging off.
  ~LogRecorder();
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;

  std::vector<std::string> lines() const;
  // The lines of one level, "ERR", "LOG" or "DBG", without the level.
  std::vector<std::string> lines(const std::string& level) const;
  // How many lines equal `line`, level included.
  size_t count(const std::string& line) const;
  bool has(const std::string& line) const { return count(line) > 0; }
  // How many lines contain `part`.
  size_t countContaining(const std::string& part) const;
  // All lines, one under the other, for the message of a failed expectation.
  std::string text() const;
  void clear();
};

}  // namespace Vantrel::Web::TestSupport
