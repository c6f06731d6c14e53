// Stands in for the platform around the service client: the user's folders, the registry, the start
// of processes, the right to the foreground, and sleeping. Linked into a test program, it takes the
// place of the real calls; what happens is what the one live FakePlatform says, and without one
// nothing is installed, nothing can be started and a sleep is short. The calls come from any
// thread; the functions are set before any other thread runs.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "runtime/ov_types.h"

namespace Vantrel::Web::TestSupport {

class FakePlatform {
 public:
  FakePlatform();
  ~FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  // The platform's answer to where application data lies: a result, and the place if it is not
  // negative.
  int32_t appDataResult = -1;
  std::string appDataDirectory;
  // The installation directories that the registry tells.
  std::optional<std::string> systemInstallation;
  std::optional<std::string> userInstallation;
  // Starting the executable at a path; 0 or a code.
  std::function<ov_rc(const std::string& path)> onStart;
  // Asking whether the started process has ended; fills state and exit code.
  std::function<ov_rc(int32_t* state, int32_t* exitCode)> onExited;
  std::function<ov_rc(uint32_t milliseconds)> onSleep;
  std::function<ov_rc(int32_t processId)> onForeground;
  // Whether only its end ends a pause of the poller; otherwise it is a short sleep.
  std::atomic<bool> pausesAreEndless{false};

  // What was asked for so far.
  std::vector<std::string> starts() const;
  std::vector<uint32_t> sleeps() const;
  // How many of the started processes' records have been given up.
  size_t closedProcesses() const;

  ov_rc start(const std::string& path);
  ov_rc sleep(uint32_t milliseconds);
  void closeProcess();

 private:
  mutable std::mutex mutex_;  // guards the records below
  std::vector<std::string> startedPaths_;
  std::vector<uint32_t> sleptMs_;
  size_t closed_ = 0;
};

}  // namespace Vantrel::Web::TestSupport
